#pragma once

#include "foundation/Result.h"
#include "platform/linux/archive/ArchiveWork.h"
#include "platform/linux/archive/ZipFile.h"

#include <functional>
#include <memory>

struct libdeflate_decompressor;

namespace velbrix {

// Reads entries of an archive and compares their sizes and sums. Keeps at most
// some 10 MB. One thread at a time.
class EntryReader {
public:
    using Sink = std::function<Result<void>(std::span<const std::uint8_t>)>;

    EntryReader(const ZipFile &archive, const Cancellation &cancellation);
    ~EntryReader();
    EntryReader(const EntryReader &) = delete;
    EntryReader &operator=(const EntryReader &) = delete;

    // The content goes to the sink in pieces, never more of it than the entry's
    // size; it is known to be right only once this succeeds.
    Result<void> read(const ZipEntry &entry, const Sink &sink);

private:
    struct Free {
        void operator()(libdeflate_decompressor *decompressor) const;
    };
    class Content;
    Result<void> readWhole(std::uint64_t offset, Content &content);
    Result<void> readStored(std::uint64_t offset, Content &content);
    Result<void> readParts(std::uint64_t offset, Content &content);

    const ZipFile &_archive;
    const Cancellation &_cancellation;
    std::unique_ptr<libdeflate_decompressor, Free> _whole;
    RawBytes _packed;
    RawBytes _unpacked;
};

} // namespace velbrix
