#include "modules/BrowseFolder.h"

namespace voxmate
{

std::string BrowseForFolder(WindowSystem& windows, const std::string& prompt, const std::string& start)
{
    const ItemList list = windows.SHBrowseForFolderA({prompt, start, BIF_RETURNONLYFSDIRS});
    if (list == 0)
        return {};
    std::string path;
    if (!windows.SHGetPathFromIDListA(list, path))
        path.clear();
    windows.CoTaskMemFree(list);
    return path;
}

} // namespace voxmate
