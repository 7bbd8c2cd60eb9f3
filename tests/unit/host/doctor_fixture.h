// A small tree of system files for the tests of kxhost doctor.
#ifndef KX_TEST_DOCTOR_FIXTURE_H
#define KX_TEST_DOCTOR_FIXTURE_H

#include "doctor/doctor_check.h"
#include "doctor/doctor_needs.h"
#include "doctor/doctor_tree.h"
#include "temporary_folder.h"

#include <filesystem>
#include <string>

namespace kxtest {

/// A tree that the test fills; paths begin with a slash, as on the running system.
class FakeTree {
public:
    kxhost::Tree tree() const { return kxhost::Tree(folder_.path().string()); }

    void folder(const std::string& path) const
    {
        std::filesystem::create_directories(folder_.path().string() + path);
    }
    void file(const std::string& path, const std::string& text) const
    {
        const std::string full = folder_.path().string() + path;
        std::filesystem::create_directories(std::filesystem::path(full).parent_path());
        writeText(full, text);
    }
    /// A symbolic link that says `target`, which need not be there.
    void link(const std::string& path, const std::string& target) const
    {
        const std::string full = folder_.path().string() + path;
        std::filesystem::create_directories(std::filesystem::path(full).parent_path());
        std::filesystem::create_symlink(target, full);
    }

private:
    TemporaryFolder folder_;
};

/// Needs of a camera of the one kind, none of the other.
inline kxhost::DoctorNeeds usbNeeds(std::uint64_t memoryMb = 100)
{
    kxhost::DoctorNeeds needs;
    needs.usb = kxhost::Weight::kSure;
    needs.gige = kxhost::Weight::kNone;
    needs.usbfsMb = memoryMb;
    return needs;
}
inline kxhost::DoctorNeeds gigeNeeds(std::uint64_t mtu = 9000, std::uint64_t receiveBytes = 1000000)
{
    kxhost::DoctorNeeds needs;
    needs.usb = kxhost::Weight::kNone;
    needs.gige = kxhost::Weight::kSure;
    needs.mtu = mtu;
    needs.receiveBytes = receiveBytes;
    return needs;
}

inline kxhost::FileNumber there(std::uint64_t value)
{
    return {kxhost::FileNumber::State::kThere, value};
}
inline constexpr kxhost::FileNumber kAbsentNumber = {kxhost::FileNumber::State::kAbsent, 0};
inline constexpr kxhost::FileNumber kGarbledNumber = {kxhost::FileNumber::State::kGarbled, 0};

} // namespace kxtest

#endif
