#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <QStringList>

// What one run of zentaro-config was asked to do.
struct Invocation
{
    QString command;    // get, set, dump, write-cfg, write-xml or edit
    QString argument;   // the KEY of get and set, the FILE of write-cfg and write-xml
    QString value;      // the VALUE of set
    QString file;       // the configuration file worked on
    QString format;     // its format, "cfg" or "xml"
    QString screenshot; // edit: a PNG of the window is saved there, then the program ends
};

// The command line: options, one command and the command's argument.
class CommandLine
{
public:
    CommandLine();

    // False for wrong usage, with the reason in error(). Help and version
    // requests are understood whatever else the line holds.
    bool parse(const QStringList& arguments);

    const QCommandLineParser& parser() const { return m_parser; }
    const Invocation& invocation() const { return m_invocation; }
    const QString& error() const { return m_error; }

    static QString usageLine();

private:
    bool readCommand(const QStringList& words);

    QCommandLineParser m_parser;
    QCommandLineOption m_fileOption;
    QCommandLineOption m_formatOption;
    QCommandLineOption m_screenshotOption;
    Invocation m_invocation;
    QString m_error;
};
