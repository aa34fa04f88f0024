#include "Platform/EventStore/Folder/SharedFileSystem.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <sys/vfs.h>

namespace Platform {

bool isSharedWithOthers(std::filesystem::path const& folder) {
    constexpr auto nfs = 0x6969U;
    constexpr auto smb = 0x517BU;
    constexpr auto cifs = 0xFF534D42U;
    constexpr auto smb2 = 0xFE534D42U;
    constexpr auto fuse = 0x65735546U;
    constexpr auto plan9 = 0x01021997U;
    constexpr auto afs = 0x5346414FU;
    constexpr auto ceph = 0x00C36400U;
    struct statfs status{};
    if (::statfs(folder.c_str(), &status) != 0) return true;
    constexpr std::array kinds{nfs, smb, cifs, smb2, fuse, plan9, afs, ceph};
    return std::ranges::find(kinds, static_cast<std::uint32_t>(status.f_type)) != kinds.end();
}

} // namespace Platform
