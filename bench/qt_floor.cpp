// Creates the application object and exits: what loading and initialising
// the Qt libraries costs before a program does anything of its own.
#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    return 0;
}
