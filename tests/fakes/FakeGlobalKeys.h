// Keys of the whole desktop: what is held, and the text that is selected somewhere.
#pragma once

#include "platform/GlobalKeys.h"

#include <string>
#include <vector>

namespace voxmate::fakes
{

class FakeGlobalKeys : public GlobalKeys
{
public:
    std::vector<std::string> held; ///< name, trigger
    std::string selected;

    void Hold(const std::vector<Key>& keys) override
    {
        held.clear();
        for (const Key& key : keys)
            held.push_back(key.Name + " " + key.Trigger);
    }
    std::string SelectedText() override { return selected; }
};

} // namespace voxmate::fakes
