// The folders of the documents that were opened last.
#pragma once

#include "platform/StateStore.h"

#include <string>
#include <vector>

namespace voxmate::qt
{

class RecentFolders
{
public:
    /// They are kept in `state` from run to run, and in memory where there is none.
    void KeepIn(StateStore* state) { state_ = state; }

    /// The folders that exist, the last one first; Most of them at most.
    std::vector<std::string> Existing() const;
    /// A document in that folder was opened.
    void Put(const std::string& folder);

    static constexpr std::size_t Most = 5;

private:
    StateStore* state_ = nullptr;
    std::string lines_; ///< one folder a line, where there is no store

    std::string Lines() const;
};

} // namespace voxmate::qt
