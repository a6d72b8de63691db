// Documents that only the word processor can read.
#pragma once

#include "modules/Program.h"
#include "readers/Block.h"
#include "readers/Refusal.h"

#include <string>
#include <vector>

namespace voxmate
{

/// Has the word processor read a document; events run meanwhile. Appends its paragraphs to `blocks`. None when Stop was
/// pressed, too.
readers::Refusal ReadByWordProcessor(Program& program, const std::string& file, std::vector<readers::Block>& blocks);

} // namespace voxmate
