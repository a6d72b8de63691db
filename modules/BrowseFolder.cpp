#include "modules/BrowseFolder.h"

#include "modules/Declarations.h"

namespace voxmate
{

std::string BrowseForFolder(const std::string& prompt)
{
    WindowSystem& windows = Host().Windows;
    const ItemList list = windows.SHBrowseForFolderA({prompt, Settings.CharacterPath, BIF_RETURNONLYFSDIRS});
    if (list == 0)
        return {};
    std::string path;
    if (!windows.SHGetPathFromIDListA(list, path))
        path.clear();
    windows.CoTaskMemFree(list);
    return path;
}

} // namespace voxmate
