// A package's parts in memory.
#pragma once

#include "readers/office/Package.h"

#include <map>
#include <string>

namespace voxmate::readers::test
{

class FakeParts : public Parts
{
public:
    std::map<std::string, std::string> parts;

    bool Has(const std::string& name) const override { return parts.contains(name); }
    std::optional<ByteSource> Open(const std::string& name) const override
    {
        const auto found = parts.find(name);
        return found == parts.end() ? std::nullopt : std::optional<ByteSource>(BytesOf(found->second));
    }
};

} // namespace voxmate::readers::test
