#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>

#include <sys/resource.h>
#include <unistd.h>

namespace velbrix::test {

// Gives a reader of foreign bytes damaged copies of valid samples, the same
// copies in every run.
struct Fuzz {
    QByteArrayList samples;
    QByteArrayList words = {}; // what the format gives a meaning to
    int rounds = 2000;         // over all samples

    using Read = std::function<bool(const QByteArray &)>;

    // Whether the reader said true of every copy, in bounded time and memory.
    // One that asks for memory without bounds ends the test program.
    bool isSurvivedBy(const Read &read) const
    {
        const MemoryLimit limit;
        std::mt19937 random(20261121);
        for (int round = 0; round < rounds; ++round) {
            const QByteArray bytes = damaged(samples[round % samples.size()], random);
            const std::clock_t start = std::clock();
            const bool isGood = read(bytes);
            const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
            if (isGood && seconds < mostSeconds)
                continue;
            std::fprintf(stderr, "round %d (%.1f s): %s\n", round, seconds,
                         bytes.left(2000).toPercentEncoding(" \n\"'{}[]:,=/").constData());
            return false;
        }
        return true;
    }

private:
    static constexpr double mostSeconds = 2; // of the processor

    // More than threads and their heaps need, less than a size out of a file may be.
    class MemoryLimit {
    public:
        MemoryLimit()
        {
            ::getrlimit(RLIMIT_AS, &_former);
#if defined(__linux__) && !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer)
            unsigned long pages = 0;
            if (std::FILE *const file = std::fopen("/proc/self/statm", "r")) {
                if (std::fscanf(file, "%lu", &pages) == 1) {
                    rlimit limit = _former;
                    limit.rlim_cur = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + (rlim_t(1) << 30);
                    ::setrlimit(RLIMIT_AS, &limit);
                }
                std::fclose(file);
            }
#endif
        }
        ~MemoryLimit() { ::setrlimit(RLIMIT_AS, &_former); }
        Q_DISABLE_COPY_MOVE(MemoryLimit)

    private:
        rlimit _former{};
    };

    QByteArray damaged(QByteArray bytes, std::mt19937 &random) const
    {
        const auto below = [&](qsizetype bound) {
            return static_cast<qsizetype>(random() % static_cast<std::size_t>(std::max<qsizetype>(bound, 1)));
        };
        for (qsizetype hits = 1 + below(6); hits > 0; --hits) {
            const qsizetype at = below(bytes.size());
            const qsizetype length = std::min(1 + below(below(4) ? 16 : bytes.size()), bytes.size() - at);
            switch (below(words.isEmpty() ? 7 : 9)) {
            case 0: // a bit
                if (length > 0)
                    bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
                break;
            case 1: // a byte
                bytes.replace(at, 1, QByteArray(1, static_cast<char>(random())));
                break;
            case 2: { // a number at the edge of its range
                const qsizetype size = qsizetype(1) << below(4);
                QByteArray number(size, "\x00\xff\x00\x80\x7f"[below(5)]);
                number[below(2) ? 0 : size - 1] = "\x00\x01\x7f\x80\xff\xfe"[below(6)];
                bytes.replace(at, size, number);
                break;
            }
            case 3:
                bytes.remove(at, length);
                break;
            case 4:
                bytes.insert(below(bytes.size()), bytes.mid(at, length));
                break;
            case 5: // two pieces in each other's place
                bytes = bytes.left(at) + bytes.mid(at + length) + bytes.mid(at, length);
                break;
            case 6:
                if (below(3) == 0)
                    bytes.truncate(at);
                break;
            default:
                bytes.replace(at, below(2) ? length : 0, words[below(words.size())]);
            }
        }
        return bytes;
    }
};

} // namespace velbrix::test
