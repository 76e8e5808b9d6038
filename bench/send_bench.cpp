// bench_send ZENTARO_SEND WORKDIR [REPS]
//
// Times zentaro-send delivering a 1 MB print file to the printer emulator
// over the loopback interface, against two floors run interleaved with it:
// cat copying the file to /dev/null (a process and the bytes, nothing
// else) and zentaro-send writing it to /dev/null (the program's own start
// and reading). What the network delivery adds is the difference from the
// second. Medians of REPS runs (default 30).

#include "printeremulator.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

// Runs a program with standard output and error on /dev/null; its wall
// time in milliseconds, or -1 when it failed.
double timedRun(const std::vector<std::string>& arguments)
{
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    int status = -1;
    const bool ran = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0
        && waitpid(pid, &status, 0) == pid;
    const auto end = std::chrono::steady_clock::now();
    posix_spawn_file_actions_destroy(&actions);
    if (!ran || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return -1;
    return std::chrono::duration<double, std::milli>(end - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_send ZENTARO_SEND WORKDIR [REPS]\n");
        return 2;
    }
    const std::string send = argv[1];
    const std::string work = argv[2];
    const int reps = argc > 3 ? std::max(1, std::atoi(argv[3])) : 30;

    // A receipt's lines, 48 columns wide, to 1 MB.
    QByteArray text;
    for (int line = 0; text.size() < (1 << 20); ++line)
        text += QByteArray::number(line).rightJustified(47, '.') + '\n';
    text.truncate(1 << 20);
    const std::string file = work + "/print-1mb.txt";
    QFile out(QString::fromStdString(file));
    if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size())
        return 1;
    out.close();
    setenv("HOME", work.c_str(), 1);

    testsupport::PrinterEmulator printer;
    const std::string uri = printer.uri().toStdString();
    std::vector<double> cat, null, network;
    for (int rep = 0; rep < reps; ++rep) {
        cat.push_back(timedRun({"cat", file}));
        null.push_back(timedRun({send, file, "/dev/null"}));
        network.push_back(timedRun({send, file, uri}));
        if (cat.back() < 0 || null.back() < 0 || network.back() < 0) {
            std::fprintf(stderr, "bench_send: a run failed\n");
            return 1;
        }
    }
    if (printer.received().size() != qsizetype(text.size()) * reps) {
        std::fprintf(stderr, "bench_send: the emulator did not get every byte\n");
        return 1;
    }
    const double floorCat = median(cat), floorNull = median(null), socket = median(network);
    std::printf("send 1 MB over loopback: %.1f ms (median of %d)\n", socket, reps);
    std::printf("  floors: cat %.1f ms, zentaro-send to /dev/null %.1f ms\n", floorCat, floorNull);
    std::printf("  delivery beyond the process start: %.1f ms (target < 50 ms); ratio to cat %.2f\n",
                socket - floorNull, socket / floorCat);
    return 0;
}
