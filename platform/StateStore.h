// What the program remembers from run to run without the user having set it, such as a window's place.
#pragma once

#include <string>

namespace voxmate
{

/// Names with values. All of it can be lost without harm, so nothing here fails: what cannot be read is empty, and what
/// cannot be written lasts until the program ends.
class StateStore
{
public:
    virtual ~StateStore() = default;
    /// The value last set, in this run or an earlier one; empty when there is none.
    virtual std::string Get(const std::string& name) = 0;
    /// `name` consists of letters, digits, dots and hyphens; `value` is any text. Returns at once; it is saved soon
    /// after.
    virtual void Set(const std::string& name, const std::string& value) = 0;
};

} // namespace voxmate
