// Reading a shape file of 1,000,000 triangles against a plain loop that scans the same bytes' tokens and
// converts their integers from memory: the median of the pairs' ratios, and the peak of memory.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "ML/ML.h"
#include "MODEL/POLY.h"
#include "reader/objread.h"
#include "text/path.h"

namespace {

using namespace quelmark;
using Clock = std::chrono::steady_clock;

constexpr int TRIANGLES = 1000000;
constexpr int ROUNDS = 7;

std::string MakeFile() {
    std::uint32_t random = 1;
    const auto coordinate = [&random] {
        random = random * 1664525U + 1013904223U;
        return static_cast<int>(random >> 20) - 2048;
    };
    std::string text = "obj suf big {\natr plain\n";
    for (int i = 0; i < TRIANGLES; ++i) {
        char line[160];
        std::snprintf(line, sizeof line,
                      "prim\tpoly\t(\t%d\t%d\t%d\n\t\t \t%d\t%d\t%d\n\t\t \t%d\t%d\t%d )\n\n", coordinate(),
                      coordinate(), coordinate(), coordinate(), coordinate(), coordinate(), coordinate(),
                      coordinate(), coordinate());
        text += line;
    }
    return text + "}\n";
}

// Every run of characters above the blank is a token; one that begins like a number is converted.
std::int64_t PlainScan(const std::string& text) {
    std::int64_t sum = 0;
    const char* at = text.data();
    const char* end = at + text.size();
    while (at < end) {
        while (at < end && static_cast<unsigned char>(*at) <= ' ') {
            ++at;
        }
        const bool negative = at < end && *at == '-';
        at += negative ? 1 : 0;
        std::int32_t value = 0;
        while (at < end && *at >= '0' && *at <= '9') {
            value = value * 10 + (*at++ - '0');
        }
        while (at<end&& static_cast<unsigned char>(*at)> ' ') {
            ++at;
        }
        sum += negative ? -value : value;
    }
    return sum;
}

double Seconds(Clock::time_point from) {
    return std::chrono::duration<double>(Clock::now() - from).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main() {
    char path[] = "/tmp/quelmark_bench_XXXXXX.suf";
    const int descriptor = mkstemps(path, 4);
    const std::string text = MakeFile();
    {
        const FilePtr file(fdopen(descriptor, "wb"));
        std::fwrite(text.data(), 1, text.size(), file.get());
    }
    InterpreterInit({});
    std::vector<double> reads, scans, ratios;
    std::int64_t sum = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        ModelInit(TRIANGLES * 72 + 4096, 4, 4, 256);
        auto from = Clock::now();
        const bool good = ReadShapeFile(path, 1);
        reads.push_back(Seconds(from));
        if (!good) {
            std::printf("the file was not read\n");
            return 1;
        }
        ModelExit();
        from = Clock::now();
        sum += PlainScan(text);
        scans.push_back(Seconds(from));
        ratios.push_back(scans.back() / reads.back());
    }
    unlink(path);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double megabytes = static_cast<double>(text.size()) / 1e6;
    std::printf(
        "%.1f MB: read %.0f MB/s, plain loop %.0f MB/s, speed ratio %.2f, peak %.0f MB (with the text twice) "
        "(%lld)\n",
        megabytes, megabytes / Median(reads), megabytes / Median(scans), Median(ratios),
        static_cast<double>(usage.ru_maxrss) / 1e3, static_cast<long long>(sum));
    InterpreterExit();
    return 0;
}
