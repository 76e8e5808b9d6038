// Runs zentaro-print and its floors as whole processes, interleaved, and
// reports each figure as a ratio against a floor measured in the same run,
// so that the machine's speed and load cancel out.
//
//   (a) start-up: a small receipt against a C program that only copies the
//       request, and a Qt program that creates the application object;
//   (b) throughput: a large receipt against a bare stream-reader pass;
//   (c) memory: peak RSS of the large receipt against one ten times smaller;
//   (d) the preview: a small receipt as SVG against the Qt floor and as PNG
//       against a GUI floor; a long receipt as PNG pages, its time against
//       the print run of the same request and its peak RSS against a
//       preview ten times shorter.
//
// Peak RSS is the child's ru_maxrss from wait4. Linux carries the high-water
// mark of the spawning process's address space into the child across exec,
// so this program links no Qt and stays far smaller than what it measures.
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <vector>

extern char** environ;

namespace {

struct Sample
{
    double ms = 0;     // wall time, spawn to reaped exit
    double cpuMs = 0;  // user + system time of the child
    long peakKb = 0;
};

struct Command
{
    std::string label;
    std::vector<std::string> argv;
    std::vector<Sample> samples;
    // The preview answers 1 when it flagged something, which is no failure.
    int highestStatus = 0;
    // The environment of this command alone (another HOME); empty: the run's.
    std::vector<std::string> env = {};
    // Its standard error is the preview's list of findings, not a fault.
    bool listsOnStandardError = false;
};

[[noreturn]] void fail(const std::string& message)
{
    std::fprintf(stderr, "bench_runner: %s\n", message.c_str());
    std::exit(2);
}

double now()
{
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

// The environment of this process with HOME replaced, so that zentaro-print
// reads the configuration under test; the floors ignore it.
std::vector<std::string> environmentWithHome(const std::string& home)
{
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e) {
        if (std::strncmp(*e, "HOME=", 5) != 0)
            env.emplace_back(*e);
    }
    env.push_back("HOME=" + home);
    return env;
}

std::vector<char*> pointers(std::vector<std::string>& strings)
{
    std::vector<char*> result;
    for (std::string& s : strings)
        result.push_back(s.data());
    result.push_back(nullptr);
    return result;
}

// One whole-process run: spawn to reaped exit, standard streams on /dev/null
// so that a terminal's speed does not enter the figure.
Sample runOnce(Command& command, std::vector<std::string>& env)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    if (command.listsOnStandardError)
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> argv = pointers(command.argv);
    std::vector<char*> envp = pointers(command.env.empty() ? env : command.env);

    const double start = now();
    pid_t pid = 0;
    const int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        fail("cannot start " + command.argv[0] + ": " + std::strerror(error));

    int status = 0;
    rusage usage{};
    while (wait4(pid, &status, 0, &usage) < 0) {
        if (errno != EINTR)
            fail(std::string("wait4: ") + std::strerror(errno));
    }
    const double end = now();
    if (!WIFEXITED(status) || WEXITSTATUS(status) > command.highestStatus)
        fail(command.label + " (" + command.argv[0] + ") failed with status "
             + std::to_string(status));
    const auto ms = [](const timeval& t) { return double(t.tv_sec) * 1e3 + double(t.tv_usec) / 1e3; };
    return {end - start, ms(usage.ru_utime) + ms(usage.ru_stime), usage.ru_maxrss};
}

// Runs every command once per round, starting each round one command further
// on, so that a slow patch of the machine falls on all of them alike.
void runInterleaved(std::vector<Command*> commands, int rounds, std::vector<std::string>& env)
{
    for (Command* c : commands)
        runOnce(*c, env);  // warms the page cache and the dynamic loader's files
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < commands.size(); ++i) {
            Command& c = *commands[(round + i) % commands.size()];
            c.samples.push_back(runOnce(c, env));
        }
    }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

double median(const Command& command)
{
    std::vector<double> ms;
    for (const Sample& s : command.samples)
        ms.push_back(s.ms);
    return median(ms);
}

double medianCpu(const Command& command)
{
    std::vector<double> ms;
    for (const Sample& s : command.samples)
        ms.push_back(s.cpuMs);
    return median(ms);
}

double minimum(const Command& command)
{
    double best = command.samples.front().ms;
    for (const Sample& s : command.samples)
        best = std::min(best, s.ms);
    return best;
}

double peakMb(const Command& command)
{
    long peak = 0;
    for (const Sample& s : command.samples)
        peak = std::max(peak, s.peakKb);
    return double(peak) / 1024;
}

long long fileSize(const std::string& path)
{
    struct stat st{};
    if (stat(path.c_str(), &st) != 0)
        fail("cannot stat " + path);
    return st.st_size;
}

// A render that wrote (almost) nothing would make every figure look good.
void checkRendered(const std::string& output, long long items)
{
    const long long bytes = fileSize(output);
    if (bytes < 200 + items * 30)
        fail(output + " holds " + std::to_string(bytes) + " bytes for " + std::to_string(items)
             + " items: the render did not run through");
}

const char* verdict(bool met)
{
    return met ? "ok" : "MISSED";
}

struct Options
{
    std::map<std::string, std::string> values;

    bool has(const std::string& name) const { return values.count(name) > 0; }

    std::string get(const std::string& name) const
    {
        auto it = values.find(name);
        if (it == values.end())
            fail("missing --" + name);
        return it->second;
    }
    long long number(const std::string& name) const
    {
        const std::string text = get(name);
        char* end = nullptr;
        const long long n = std::strtoll(text.c_str(), &end, 10);
        if (*end != '\0' || n <= 0)
            fail("--" + name + " needs a positive number, not '" + text + "'");
        return n;
    }
};

Options parse(int argc, char** argv)
{
    Options options;
    options.values = {{"startup-reps", "50"}, {"large-reps", "5"}};
    for (int i = 1; i < argc; i += 2) {
        if (std::strncmp(argv[i], "--", 2) != 0 || i + 1 >= argc)
            fail(std::string("usage: ") + argv[0]
                 + " --bin DIR --home DIR --out DIR"
                   " --small FILE --small-items N --medium FILE --medium-items N"
                   " --large FILE --large-items N [--startup-reps N] [--large-reps N]"
                   " [--preview-short FILE --preview-short-items N]"
                   " [--text-home DIR --escpos-home DIR --escpos-logo-home DIR]");
        options.values[argv[i] + 2] = argv[i + 1];
    }
    return options;
}

// What every figure is measured on.
struct Inputs
{
    std::string bin;
    std::string out;
    std::string tools;
    std::string small;
    std::string medium;
    std::string large;
    long long smallItems;
    long long mediumItems;
    long long largeItems;
    int startupReps;
    int largeReps;
};

Inputs readInputs(const Options& options)
{
    const std::string bin = options.get("bin");
    return {bin,
            options.get("out"),
            bin + "/bench/",
            options.get("small"),
            options.get("medium"),
            options.get("large"),
            options.number("small-items"),
            options.number("medium-items"),
            options.number("large-items"),
            int(options.number("startup-reps")),
            int(options.number("large-reps"))};
}

// (d) the preview, whose pictures have no floor of their own: start-up
// against the application objects it creates, the long picture against the
// print run of the same request and a picture ten times shorter.
void previewFigures(const Options& options, const Inputs& in, std::vector<std::string>& env)
{
    const std::string preview = in.bin + "/tools/zentaro-preview/zentaro-preview";
    const std::string& tools = in.tools;
    const std::string& out = in.out;
    const std::string& small = in.small;
    const std::string& medium = in.medium;
    const std::string shorter = options.get("preview-short");
    const long long shortItems = options.number("preview-short-items");

    Command qtFloor{"Qt floor", {tools + "bench_qt_floor"}, {}};
    Command guiFloor{"GUI floor", {tools + "bench_gui_floor"}, {}};
    Command svg{"preview SVG", {preview, small, out + "/small.svg"}, {}, 1};
    Command png{"preview PNG", {preview, small, out + "/small.png"}, {}, 1};
    runInterleaved({&qtFloor, &guiFloor, &svg, &png}, in.startupReps, env);
    const double svgMs = median(svg);
    const double pngMs = median(png);
    std::printf("preview   receipt %lld items  SVG %.2f ms   Qt floor %.2f ms   ratio %.2f;"
                "   PNG %.2f ms   GUI floor %.2f ms   ratio %.2f   (target < 50 ms)  %s\n",
                in.smallItems, svgMs, median(qtFloor), svgMs / median(qtFloor), pngMs, median(guiFloor),
                pngMs / median(guiFloor), verdict(svgMs < 50 && pngMs < 50));
    std::fflush(stdout);

    Command print{"print run", {in.bin + "/tools/zentaro-print/zentaro-print", medium, out + "/medium.txt"}, {}};
    // The long picture stops after its hundredth page, as the preview's
    // pages are bounded in number; it says so on standard error.
    Command longPng{"preview PNG", {preview, medium, out + "/medium.png"}, {}, 1, {}, true};
    Command shortPng{"preview PNG", {preview, shorter, out + "/short.png"}, {}, 1, {}, true};
    runInterleaved({&print, &longPng, &shortPng}, in.largeReps, env);
    const double longMs = median(longPng);
    const double longMb = peakMb(longPng);
    const double shortMb = peakMb(shortPng);
    std::printf("          receipt %lld items as PNG pages (100 at most)  %.0f ms   print run %.0f ms   ratio %.1f;"
                "   peak RSS %.1f MB   %lld items %.1f MB   ratio %.2f (target <= 1.5, pages bounded)  %s\n",
                in.mediumItems, longMs, median(print), longMs / median(print), longMb, shortItems, shortMb,
                longMb / shortMb, verdict(longMb / shortMb <= 1.5));
}

// (e) ESC/POS: the small receipt for a thermal printer against the same
// receipt, in the same code page, as command text, and what a 576-dot logo
// adds to it.
void escPosFigures(const Options& options, const Inputs& in, const std::string& render,
                   std::vector<std::string>& env)
{
    Command commandText{"command text", {render, in.small, in.out + "/text.txt"}, {}, 0,
                        environmentWithHome(options.get("text-home"))};
    Command escPos{"ESC/POS", {render, in.small, in.out + "/small.bin"}, {}, 0,
                   environmentWithHome(options.get("escpos-home"))};
    Command logo{"ESC/POS with logo", {render, in.small, in.out + "/logo.bin"}, {}, 0,
                 environmentWithHome(options.get("escpos-logo-home"))};
    runInterleaved({&commandText, &escPos, &logo}, in.startupReps, env);
    // A logo that failed to load would make its cost look nil.
    if (fileSize(in.out + "/logo.bin") < fileSize(in.out + "/small.bin") + 576 / 8 * 100)
        fail("the ESC/POS receipt has no logo: check --escpos-logo-home");
    const double textMs = median(commandText);
    const double escPosMs = median(escPos);
    const double logoMs = median(logo) - escPosMs;
    std::printf("escpos    receipt %lld items  %.2f ms   command text %.2f ms   ratio %.3f (target <= 1.05)  %s\n",
                in.smallItems, escPosMs, textMs, escPosMs / textMs, verdict(escPosMs / textMs <= 1.05));
    std::printf("          576-dot logo adds %.2f ms (CPU %.2f ms)   (target < 2 ms)  %s\n", logoMs,
                medianCpu(logo) - medianCpu(escPos), verdict(logoMs < 2));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = parse(argc, argv);
    const Inputs in = readInputs(options);
    const auto& [bin, out, tools, small, medium, large, smallItems, mediumItems, largeItems, startupReps,
                 largeReps] = in;
    const std::string render = bin + "/tools/zentaro-print/zentaro-print";
    const std::string home = options.get("home");
    // Without its configuration the renderer falls back to bare defaults and
    // lays out less, which would flatter every figure.
    fileSize(home + "/.zentaro/conf/zentaro.conf");
    std::vector<std::string> env = environmentWithHome(home);

    // Other work on the machine stretches the wall times unevenly; say how
    // busy it was so that a reader can judge the figures.
    double load = 0;
    if (std::FILE* f = std::fopen("/proc/loadavg", "r")) {
        if (std::fscanf(f, "%lf", &load) != 1)
            load = 0;
        std::fclose(f);
    }
    std::printf("machine   %ld cores, load average %.2f before the run\n", sysconf(_SC_NPROCESSORS_ONLN), load);
    std::fflush(stdout);

    // (a) start-up
    Command copyFloor{"C floor", {tools + "bench_copy_floor", small, out + "/copy.txt"}, {}};
    Command qtFloor{"Qt floor", {tools + "bench_qt_floor", small, out + "/qt.txt"}, {}};
    Command renderSmall{"render", {render, small, out + "/small.txt"}, {}};
    runInterleaved({&copyFloor, &qtFloor, &renderSmall}, startupReps, env);
    checkRendered(out + "/small.txt", smallItems);

    const double cMs = median(copyFloor);
    const double qtMs = median(qtFloor);
    const double smallMs = median(renderSmall);
    const double startupRatio = smallMs / qtMs;
    std::printf("startup   receipt %lld items  %.2f ms   C floor %.2f ms   Qt floor %.2f ms (%.1fx C)"
                "   ratio %.2f (target <= 1.2)  %s\n",
                smallItems, smallMs, cMs, qtMs, qtMs / cMs, startupRatio,
                verdict(startupRatio <= 1.2));
    std::printf("          median of %d interleaved runs; fastest %.2f / %.2f / %.2f ms;"
                " CPU time %.2f / %.2f / %.2f ms, ratio %.2f\n",
                startupReps, minimum(renderSmall), minimum(copyFloor), minimum(qtFloor),
                medianCpu(renderSmall), medianCpu(copyFloor), medianCpu(qtFloor),
                medianCpu(renderSmall) / medianCpu(qtFloor));
    std::fflush(stdout);

    // (b) throughput, against a bare expat pass and a bare stream-reader pass
    Command expatFloor{"expat floor", {tools + "bench_expat_floor", large}, {}};
    Command parseFloor{"stream-reader floor", {tools + "bench_parse_floor", large}, {}};
    Command renderLarge{"render", {render, large, out + "/large.txt"}, {}};
    runInterleaved({&expatFloor, &parseFloor, &renderLarge}, largeReps, env);
    checkRendered(out + "/large.txt", largeItems);

    const double expatMs = median(expatFloor);
    const double parseMs = median(parseFloor);
    const double largeMs = median(renderLarge);
    const double largeRatio = largeMs / expatMs;
    const double streamRatio = largeMs / parseMs;
    std::printf("render    receipt %lld items (%.1f MB)  %.0f ms   expat floor %.0f ms"
                "   ratio %.2f (target <= 1.25)  %s\n",
                largeItems, double(fileSize(large)) / 1e6, largeMs, expatMs, largeRatio,
                verdict(largeRatio <= 1.25));
    std::printf("          against the stream-reader floor %.0f ms: ratio %.2f (target <= 0.6)  %s\n",
                parseMs, streamRatio, verdict(streamRatio <= 0.6));
    std::printf("          median of %d interleaved runs; fastest %.0f / %.0f / %.0f ms;"
                " CPU time %.0f / %.0f ms, ratio %.2f\n",
                largeReps, minimum(renderLarge), minimum(expatFloor), minimum(parseFloor),
                medianCpu(renderLarge), medianCpu(expatFloor),
                medianCpu(renderLarge) / medianCpu(expatFloor));
    std::fflush(stdout);

    // (c) memory: the large render's runs above, and the smaller one's now
    Command renderMedium{"render", {render, medium, out + "/medium.txt"}, {}};
    runInterleaved({&renderMedium}, largeReps, env);
    checkRendered(out + "/medium.txt", mediumItems);

    const double largeMb = peakMb(renderLarge);
    const double mediumMb = peakMb(renderMedium);
    const double memoryRatio = largeMb / mediumMb;
    std::printf("memory    peak RSS receipt %lld items %.1f MB   %lld items %.1f MB"
                "   ratio %.2f (target <= 1.1, flat)  %s\n",
                largeItems, largeMb, mediumItems, mediumMb, memoryRatio,
                verdict(memoryRatio <= 1.1));
    std::printf("          render of %lld items %.1f MB; expat floor %.1f MB; C floor %.1f MB"
                " (a figure never reads below the runner's own peak)\n",
                smallItems, peakMb(renderSmall), peakMb(expatFloor), peakMb(copyFloor));
    std::fflush(stdout);

    if (options.has("escpos-home"))
        escPosFigures(options, in, render, env);
    if (options.has("preview-short"))
        previewFigures(options, in, env);
    return 0;
}
