// Files that other programs hand over, or the command line names.
#pragma once

#include "modules/Program.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace voxmate
{

class Opening
{
public:
    using Reader = std::function<void(const std::string& file)>;

    /// `other` takes the files of all kinds that are not added, and folders. A reader is called for what exists, one at
    /// a time, and may show boxes.
    Opening(Program& program, Reader other);

    /// Hands files whose name ends in `.extension`, in any case, to `reader`.
    void Add(const std::string& extension, Reader reader);

    /// Puts files behind those that wait to be opened.
    void Put(const std::vector<std::string>& files);
    /// Opens what waits, in its order, as soon as the program has started up. False while something waits. Stop while a
    /// file is being opened drops the others.
    bool GoOn();

private:
    Program& program_;
    Reader other_;
    std::map<std::string, Reader> readers_; ///< by the extension in capitals
    std::deque<std::string> waiting_;
    bool working_ = false;

    void OpenOne(const std::string& file);
};

} // namespace voxmate
