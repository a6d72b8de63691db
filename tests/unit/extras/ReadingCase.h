// What tests of reading documents start from: documents that are told of, and a character that speaks when it is let.
#pragma once

#include "ExtrasTest.h"

#include <utility>
#include <vector>

namespace voxmate
{

class ReadingCase : public ExtrasTest
{
protected:
    void Begin()
    {
        ExtrasTest::Begin();
        collected_ = fake.Loaded("Alfa").requests.size();
    }
    static readers::Block Paragraph(const std::string& text)
    {
        return {readers::BlockKind::Paragraph, 0, "", text, ""};
    }
    void File(const std::string& path, std::vector<readers::Frame> frames)
    {
        fake.files.files.insert(path);
        documents.told[path] = std::move(frames);
    }
    /// Puts a document in place with these paragraphs.
    void Document(const std::string& path, const Lines& paragraphs)
    {
        std::vector<readers::Frame> frames{readers::Kind::Docx};
        for (const std::string& text : paragraphs)
            frames.emplace_back(Paragraph(text));
        frames.emplace_back(readers::Refusal::None);
        File(path, std::move(frames));
    }
    void Told(const std::string& path, const std::vector<readers::Block>& blocks)
    {
        std::vector<readers::Frame> frames{readers::Kind::Odt};
        frames.insert(frames.end(), blocks.begin(), blocks.end());
        frames.emplace_back(readers::Refusal::None);
        File(path, std::move(frames));
    }
    void Open(const Lines& files)
    {
        desktop.Called({files, ""});
        Collect();
    }
    void Tick()
    {
        TimerOf("tmrDocument").Fire();
        Collect();
    }
    /// Takes over the requests that were made.
    void Collect()
    {
        for (std::size_t& at = collected_; at < fake.Loaded("Alfa").requests.size(); ++at)
            requests_.push_back(fake.Loaded("Alfa").requests[at]);
    }
    /// The character begins the next request, and completes it.
    void StartNext()
    {
        Collect();
        ASSERT_FALSE(requests_.empty());
        dynamic_cast<fakes::FakeRequest&>(*requests_.front()).status = RequestStatus::InProgress;
        fake.agent.RequestStart(requests_.front());
    }
    void EndNext(RequestStatus status = RequestStatus::Complete)
    {
        Collect();
        ASSERT_FALSE(requests_.empty());
        const AgentRequestPtr request = requests_.front();
        requests_.erase(requests_.begin());
        dynamic_cast<fakes::FakeRequest&>(*request).status = status;
        fake.agent.RequestComplete(request);
        Collect();
    }
    /// A word of the request that is being spoken is heard.
    void HearWord(int word)
    {
        ASSERT_FALSE(requests_.empty());
        fake.agent.Word(requests_.front(), word);
    }
    /// Everything is spoken that has been asked for, and that is asked for then.
    void SpeakAll()
    {
        do {
            while (!requests_.empty()) {
                StartNext();
                EndNext();
            }
            Tick();
        } while (!requests_.empty());
    }
    Lines Spoken() const
    {
        Lines texts;
        const std::string prefix = "Speak \\Pit=50\\ \\Spd=156\\";
        for (const std::string& call : fake.log) {
            if (call.starts_with(prefix))
                texts.push_back(call.substr(prefix.size()));
            else if (call.starts_with("Speak "))
                texts.push_back(call);
        }
        return texts;
    }
    std::vector<AgentRequestPtr> requests_;
    std::size_t collected_ = 0;
};

} // namespace voxmate
