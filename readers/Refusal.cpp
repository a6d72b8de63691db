#include "readers/Refusal.h"

#include "base/FileName.h"

namespace voxmate::readers
{

namespace
{

std::string_view Reason(Refusal refusal)
{
    switch (refusal) {
    case Refusal::None:
        break;
    case Refusal::NotFound:
        return "there is no such file";
    case Refusal::NotAllowed:
        return "it is no file that may be read";
    case Refusal::CannotRead:
        return "the disk or the network does not give it";
    case Refusal::Damaged:
        return "it is damaged";
    case Refusal::Protected:
        return "it is protected by a password or against copying";
    case Refusal::TooLarge:
        return "it is too large";
    case Refusal::TooLong:
        return "it takes too long";
    case Refusal::Unknown:
        return "it is of no kind that Voxmate knows";
    case Refusal::NoText:
        return "there is no text in it";
    case Refusal::NeedsConverter:
        return "only the word processor can read it";
    case Refusal::Sound:
        return "it is a recording";
    case Refusal::NoReader:
        return "the program that reads documents cannot be started";
    }
    return "";
}

} // namespace

std::string Sentence(Refusal refusal, std::string_view path, bool begun)
{
    if (refusal == Refusal::None)
        return "";
    return "\"" + std::string(NameOfPath(path)) + "\" cannot be read" + (begun ? " to its end" : "") + ": " +
           std::string(Reason(refusal)) + ".";
}

} // namespace voxmate::readers
