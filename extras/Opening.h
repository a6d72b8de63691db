// Files that other programs hand over, or the command line names: each kind has its reader.
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

    /// Text files are read aloud; other kinds are added.
    explicit Opening(Program& program);

    /// Hands files whose name ends in `.extension`, in any case, to `reader`. It is called for files that exist, one at
    /// a time, and may show boxes.
    void Add(const std::string& extension, Reader reader);
    /// What Voxmate opens, for the sentence about files that it does not: "reads text files (.txt)". One of several is
    /// added with each kind.
    void Tell(const std::string& what) { kinds_.push_back(what); }

    /// Puts files behind those that wait to be opened.
    void Put(const std::vector<std::string>& files);
    /// Opens what waits, in its order, as soon as the program has started up. False while something waits.
    bool GoOn();

private:
    Program& program_;
    std::map<std::string, Reader> readers_; ///< by the extension in capitals
    std::vector<std::string> kinds_;
    std::deque<std::string> waiting_;
    bool working_ = false;

    void OpenOne(const std::string& file);
    std::string Kinds() const;
};

} // namespace voxmate
