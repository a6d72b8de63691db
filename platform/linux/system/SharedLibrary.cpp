#include "platform/SharedLibrary.h"

#include <dlfcn.h>
#include <link.h>

namespace voxmate
{

std::string SharedLibrary::FileName(std::string_view name, int version)
{
    return "lib" + std::string(name) + ".so." + std::to_string(version);
}

std::optional<SharedLibrary> SharedLibrary::Load(const std::filesystem::path& name)
{
    void* const handle = dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL);
    return handle ? std::optional(SharedLibrary(handle)) : std::nullopt;
}

void* SharedLibrary::Address(const char* name) const
{
    return dlsym(handle_, name);
}

std::filesystem::path SharedLibrary::Folder() const
{
    const link_map* map = nullptr;
    return dlinfo(handle_, RTLD_DI_LINKMAP, static_cast<void*>(&map)) == 0
               ? std::filesystem::path(map->l_name).parent_path()
               : std::filesystem::path();
}

} // namespace voxmate
