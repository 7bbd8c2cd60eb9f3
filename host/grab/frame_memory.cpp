// The plain pool of frame slots, mapped from anonymous memory.
#include "grab/frame_memory.h"

#include <sys/mman.h>
#include <unistd.h>

namespace kxhost {

FrameMemory::~FrameMemory()
{
    release();
}

void FrameMemory::init(std::uint32_t count)
{
    count_ = count;
    slotBytes_ = 0;
}

bool FrameMemory::setFrameSize(std::uint32_t bytes)
{
    if (slotBytes_ != 0 || bytes == 0 || count_ == 0) {
        return true;
    }
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t slotBytes = (bytes + page - 1) / page * page;
    const std::size_t needed = slotBytes * count_;
    if (needed > mappedBytes_) {
        release();
        void* block = mmap(nullptr, needed, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
        if (block == MAP_FAILED) {
            return false;
        }
        base_ = block;
        mappedBytes_ = needed;
    }
    slotBytes_ = slotBytes;
    return true;
}

void* FrameMemory::slot(std::uint32_t index) const
{
    if (!ready() || index >= count_) {
        return nullptr;
    }
    return static_cast<std::byte*>(base_) + index * slotBytes_;
}

void FrameMemory::release()
{
    if (base_ != nullptr) {
        munmap(base_, mappedBytes_);
    }
    base_ = nullptr;
    mappedBytes_ = 0;
}

} // namespace kxhost
