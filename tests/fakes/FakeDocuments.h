// Documents that are read from a list of what their reader tells, in place of a reader's process.
#pragma once

#include "readers/Reading.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeDocuments
{
public:
    /// By path, what the reader tells; without a Refusal at its end it has not told all yet. Any other file is a text
    /// of one paragraph, which `texts` holds; empty where it has none.
    std::map<std::string, std::vector<readers::Frame>> told;
    std::map<std::string, std::string> prints; ///< by path, the content's fingerprint; of any other file its path
    std::vector<std::string> begun;            ///< the files that a reader was started for
    std::map<std::string, std::size_t> taken;  ///< by path, how much of what is told was taken
    const std::map<std::string, std::string>* texts = nullptr;
    int reading = 0; ///< readers that have not been ended

    std::unique_ptr<readers::Reading> Read(const std::string& path)
    {
        begun.push_back(path);
        return std::make_unique<readers::Reading>(path, std::make_unique<Reader>(*this, path));
    }

    std::string Fingerprint(const std::string& path) const { return prints.contains(path) ? prints.at(path) : path; }

private:
    // What is added to a document while it is read comes, too.
    class Reader : public Helper
    {
    public:
        Reader(FakeDocuments& documents, std::string path) : documents_(documents), path_(std::move(path))
        {
            ++documents_.reading;
            const bool has =
                documents_.texts && documents_.texts->contains(path_) && !documents_.texts->at(path_).empty();
            if (has)
                text_ = {readers::Kind::Text,
                         readers::Block{readers::BlockKind::Paragraph, 0, "", documents_.texts->at(path_), ""},
                         readers::Refusal::None};
        }
        ~Reader() override { --documents_.reading; }
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

        std::size_t Read(std::span<char> buffer, std::chrono::milliseconds /*wait*/) override
        {
            const auto found = documents_.told.find(path_);
            const std::vector<readers::Frame>& frames = found == documents_.told.end() ? text_ : found->second;
            while (bytes_.empty() && next_ < frames.size())
                bytes_ = EncodeFrame(frames[next_++]);
            documents_.taken[path_] = next_;
            const std::size_t size = std::min(buffer.size(), bytes_.size());
            std::copy_n(bytes_.begin(), size, buffer.begin());
            bytes_.erase(0, size);
            return size;
        }
        bool AtEnd() const override { return false; }
        End Ending() override { return End::Well; }

    private:
        FakeDocuments& documents_;
        std::string path_;
        std::vector<readers::Frame> text_{readers::Refusal::NoText};
        std::size_t next_ = 0;
        std::string bytes_;
    };
};

} // namespace voxmate::fakes
