// Reading a shape file of a million triangles, beside the plainest loop that finds the tokens of the same
// text in memory and converts its integers. The two run in turn, so that what disturbs one disturbs both; the
// medians of the times, of the two speeds and of their ratios are printed, and the peak of memory.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "MODEL/POLY.h"
#include "reader/objread.h"
#include "text/path.h"

namespace quelmark {
namespace {

constexpr int TRIANGLES = 1'000'000;
constexpr int RUNS = 11;
constexpr int VERTICES = 3;

void MakeFile(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        std::exit(1);
    }
    std::mt19937 random(20240229);
    std::uniform_int_distribution<int> coordinate(VERTEX_MIN, VERTEX_MAX);
    std::fputs("obj suf million {\natr white\n", file);
    for (int i = 0; i < TRIANGLES; ++i) {
        std::fputs("prim\tpoly\t(", file);
        for (int k = 0; k < VERTICES; ++k) {
            std::fprintf(file, "%s\t%d\t%d\t%d", k == 0 ? "" : "\n\t\t ", coordinate(random),
                         coordinate(random), coordinate(random));
        }
        std::fputs(" )\n\n", file);
    }
    std::fputs("}\n", file);
    std::fclose(file);
}

struct Scan {
    std::size_t tokens = 0;
    std::int64_t sum = 0;
};

// The peer: tokens between blanks, those that begin like numbers converted.
Scan ScanPlainly(const std::string& text) {
    Scan scan;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at < end) {
        while (at < end && static_cast<unsigned char>(*at) <= ' ') {
            ++at;
        }
        const char* start = at;
        const bool negative = at < end && *at == '-';
        at += negative ? 1 : 0;
        std::int32_t value = 0;
        while (at < end && *at >= '0' && *at <= '9') {
            value = value * 10 + (*at++ - '0');
        }
        scan.sum += negative ? -value : value;
        while (at<end&& static_cast<unsigned char>(*at)> ' ') {
            ++at;
        }
        scan.tokens += at != start ? 1 : 0;
    }
    return scan;
}

template <class Work>
double Seconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double PeakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

void ReadOnce(const std::string& file) {
    if (!ReadShapeFile(file, 0)) {
        std::fprintf(stderr, "the file was not read\n");
        std::exit(1);
    }
}

void Measure(const std::string& file, const std::string& text) {
    std::vector<double> plain, read, ratio;
    std::size_t tokens = 0;
    for (int run = 0; run < RUNS; ++run) {
        plain.push_back(Seconds([&] {
            const Scan scan = ScanPlainly(text);
            tokens = scan.tokens + static_cast<std::size_t>(scan.sum & 1);
        }));
        ModelInit(1 << 27, 16, 16, VERTEX_LIMIT - 1);
        read.push_back(Seconds([&] { ReadOnce(file); }));
        ModelExit();
        ratio.push_back(plain.back() / read.back());
    }
    const double megabytes = static_cast<double>(text.size()) / 1e6;
    std::printf("text            %8.1f MB, %d triangles, %zu tokens\n", megabytes, TRIANGLES, tokens);
    std::printf("plain loop      %8.1f ms  %8.0f MB/s\n", Median(plain) * 1e3, megabytes / Median(plain));
    std::printf("ReadShapeFile   %8.1f ms  %8.0f MB/s\n", Median(read) * 1e3, megabytes / Median(read));
    std::printf("ratio           %8.2f (median of %d pairs)\n", Median(ratio), RUNS);
}

}  // namespace
}  // namespace quelmark

int main() {
    using namespace quelmark;
    const std::string host = "/tmp/quelmark-bench-" + std::to_string(getpid()) + ".suf";
    const std::string file = *ScriptPath(host);
    MakeFile(host);
    ModelInit(1 << 27, 16, 16, VERTEX_LIMIT - 1);
    const double before = PeakMegabytes();
    ReadOnce(file);
    std::printf("peak memory     %8.1f MB before the first read, %.1f MB after it (%.1f MB of polygons)\n",
                before, PeakMegabytes(), static_cast<double>(BufNext - BufTop) / 1e6);
    ModelExit();
    Measure(file, ReadWholeFile(file).value_or(""));
    std::remove(host.c_str());
    return 0;
}
