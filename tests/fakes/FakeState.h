// The state store's fake: values in memory.
#pragma once

#include "platform/StateStore.h"

#include <map>
#include <string>

namespace voxmate::fakes
{

class FakeState : public StateStore
{
public:
    std::map<std::string, std::string> values;

    std::string Get(const std::string& name) override { return values.contains(name) ? values.at(name) : ""; }
    void Set(const std::string& name, const std::string& value) override { values[name] = value; }
};

} // namespace voxmate::fakes
