// foldersizes LIST [THREADS]: measures the folders of a file (names ended by
// NUL) once for each line on standard input. Answers with a line of seconds and
// a line of each folder's bytes.

#include "platform/linux/files/TreeDiskUsage.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QFile>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>

using namespace velbrix;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QFile list(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    if (!list.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "usage: foldersizes LIST [THREADS]\n");
        return 2;
    }
    QList<QByteArray> folders = list.readAll().split('\0');
    folders.removeAll(QByteArray());
    const auto usage =
        argc > 2 ? std::make_unique<TreeDiskUsage>(std::stoi(argv[2])) : std::make_unique<TreeDiskUsage>();
    for (std::string line; std::getline(std::cin, line);) {
        QList<qint64> sizes(folders.size(), -1);
        const auto start = std::chrono::steady_clock::now();
        const auto keep = [&](qsizetype index, qint64 bytes) { sizes[index] = bytes; };
        QCoro::waitFor(usage->measure(folders, keep, Cancellation()));
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        std::printf("%.6f\n", time.count());
        for (const qint64 size : std::as_const(sizes))
            std::printf("%lld ", static_cast<long long>(size));
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}
