// Writes the inputs that the fuzzer starts from, made with the project's own writers. fuzz_seeds FOLDER fills one
// subfolder for each target.
#include "agent/file/AcsCompression.h"
#include "agent/file/AcsWriter.h"
#include "tests/fakes/ReminderSlot.h"
#include "tests/unit/agent/AcsSamples.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <sndfile.h>

using namespace voxmate::agent;
using Bytes = std::vector<std::uint8_t>;

namespace
{

class Folder
{
public:
    explicit Folder(std::filesystem::path path) : path_(std::move(path)) { std::filesystem::create_directories(path_); }
    void Add(const std::string& name, const Bytes& bytes) const
    {
        std::ofstream out(path_ / ("seed-" + name), std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush())
            throw std::runtime_error("cannot write to " + path_.string());
    }
    void Add(const std::string& name, std::string_view text) const { Add(name, Bytes(text.begin(), text.end())); }

private:
    std::filesystem::path path_;
};

Bytes Noise(std::size_t size, std::uint8_t values)
{
    Bytes bytes(size);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>((state >> 16) % values);
    }
    return bytes;
}

void WriteCharacters(const Folder& folder)
{
    const auto add = [&](const std::string& name, const std::function<void(AcsDescription&)>& change) {
        AcsDescription d = test::SmallCharacter();
        change(d);
        folder.Add(name, WriteAcs(d));
    };
    add("whole", [](AcsDescription&) {});
    add("stored", [](AcsDescription& d) { d.compress = false; });
    add("bare", [](AcsDescription& d) {
        d.voice.reset();
        d.balloon.reset();
        d.trayIcon.reset();
        d.names.clear();
        d.states.clear();
        d.sounds.clear();
        d.animations.resize(1);
        d.animations[0].frames.resize(1);
        d.animations[0].frames[0] = Frame{};
    });
    add("packed", [](AcsDescription& d) {
        d.images[0] = {64, 64, Noise(4096, 3)};
        d.images[3] = test::Filled(200, 200, 1);
    });
    add("circle", [](AcsDescription& d) {
        for (Frame& frame : d.animations[0].frames) {
            frame.duration = 0;
            frame.branches = {{0, 50}, {1, 50}};
            frame.exitFrame = 0;
        }
    });
    add("exits", [](AcsDescription& d) {
        Animation& animation = d.animations[0];
        animation.transition = Transition::ExitBranches;
        animation.frames.resize(6, animation.frames[0]);
        for (std::size_t i = 0; i < 6; ++i) {
            animation.frames[i].duration = static_cast<std::uint16_t>(i);
            animation.frames[i].exitFrame = static_cast<std::int16_t>(i == 5 ? -1 : 5 - static_cast<int>(i));
            animation.frames[i].branches = {{static_cast<std::uint16_t>(i / 2), 30}};
        }
    });
    add("too-large", [](AcsDescription& d) { d.width = d.height = 4096; });
    // The most that one frame may hold: the largest size, as large an image, and as large a mouth over it.
    add("largest", [](AcsDescription& d) {
        d.width = d.height = 2048;
        d.images = {test::Filled(2048, 2048, 1), test::Filled(2048, 2048, 2)};
        d.animations.resize(1);
        d.animations[0].frames.resize(1);
        d.animations[0].frames[0].images = {{0, 0, 0}};
        d.animations[0].frames[0].overlays = {{MouthClosed, false, 1, 0, 0, 1, 1, {}}};
    });
}

void WritePacked(const Folder& folder)
{
    folder.Add("nothing", Compress({}));
    folder.Add("zeros", Compress(Bytes(6000, 0)));
    folder.Add("noise", Compress(Noise(300, 255)));
    folder.Add("few", Compress(Noise(2000, 3)));
    // One copy for each width of distance.
    for (const std::size_t gap : {std::size_t{40}, std::size_t{300}, std::size_t{3000}, std::size_t{8000}}) {
        Bytes bytes = Noise(20, 255);
        const Bytes filling(gap, 7);
        bytes.insert(bytes.end(), filling.begin(), filling.end());
        const Bytes again = Noise(20, 255);
        bytes.insert(bytes.end(), again.begin(), again.end());
        folder.Add("gap-" + std::to_string(gap), Compress(bytes));
    }
}

void WriteTexts(const Folder& folder)
{
    constexpr std::array<std::string_view, 24> texts{
        "Hello, world.",
        "\\Chr=\"Whisper\"\\\\Pit=100\\\\Spd=150\\Hello there!",
        "One \\Mrk=7\\two \\Pau=500\\three \\Emp\\four \\Rst\\five \\Vol=1000\\six.",
        "It is \\Map=\"a quarter past two\"=\"2:15\"\\ now, \\Map=\"\"=\"shown only\"\\ \\Map=\"said only\"=\"\"\\.",
        "\\Ctx=\"E-mail\"\\me_and.you@some-where.org/x\\Ctx=\"Address\"\\ 12 #4 Main St. & Elm Ave. 50% Apt. 3 Blvd.",
        "\\Ctx=\"Unknown\"\\ \\Chr=\"Normal\"\\ \\Chr=\"Monotone\"\\ flat",
        "\\Lst\\",
        " \\lst\\ ",
        "C:\\\\dir\\\\file and C:\\dir\\file or a \\ b",
        "\\Map=\"a\\\\b=c\"=\"d=\\\\e\"\\",
        "\\foo=\"bar baz\"=1\\ \\ Pit = 100 \\ \\Pit=\\ \\Pit=99999999999\\ \\Mrk=2147483647\\",
        "\\x=a\"=\"\\x=a\"=\"\\x=a\"=\"",
        "\\Map=\"never closed and \\Pit=3\\ on",
        "Dr. Smith said \"no!\" He left, e.g. for good... Did he? Yes; he did: A. B. Miller, Prof. of 3 things.",
        "One\ntwo\r\nthree\rfour\n\nfive\n\n\n\nsix",
        "Grüße aus Łódź: 5 € – “so” ‘viel’ … 20 °C, Æther, Œuvre, ß, £3",
        "日本語のテキスト 🦊 \xC2\xA0 no\xC2\xA0"
        "break \xEF\xBB\xBF",
        "\xFF\xFE bad \xC3 bytes \xED\xA0\x80 here \xF4\x90\x80\x80",
        "a & b < c > d \\Emp\\<tag> &amp; \\Mrk=1\\&lt;",
        "Donaudampfschifffahrtselektrizitaetenhauptbetriebswerkbauunterbeamtengesellschaft",
        "a                                                                b",
        "\t\x01\x7F\x1F tabs\tand\x02"
        "controls\x7F",
        "abc\\Emp\\def\\Map=\"x y\"=\"ghi jkl\"\\mno",
        "\\Pau=1\\\\Pau=0\\\\Pau=9999\\\\Vol=70000\\\\Vol=0\\\\Spd=0\\\\Pit=0\\x"};
    for (std::size_t i = 0; i < texts.size(); ++i)
        folder.Add(std::to_string(i), std::string(1, static_cast<char>(i * 10)).append(texts[i]));

    // A sentence too long for one breath, and long runs that the readers look ahead over.
    std::string clauses;
    for (int i = 0; i < 60; ++i)
        clauses += "and then again, ";
    const auto repeated = [](std::string_view text, std::size_t bytes) {
        std::string all;
        while (all.size() < bytes)
            all += text;
        return all;
    };
    folder.Add("clauses", " " + clauses);
    constexpr std::size_t longest = 16000;
    folder.Add("blanks", " a" + std::string(longest, ' ') + "b");
    folder.Add("word", std::string(1, '\0') + std::string(longest, 'w'));
    folder.Add("quotes", " " + repeated("\\x=a\"=\"", longest));
    folder.Add("backslashes", " " + repeated("\\x ", longest));
    folder.Add("lines", std::string(1, '\0') + repeated("a\n", longest));
    folder.Add("stops", " " + repeated("A. ", longest));
}

// A sound in the given libsndfile format; empty when the library cannot write it.
Bytes Sound(int format, int channels, int rate)
{
    struct Memory {
        Bytes bytes;
        sf_count_t at = 0;
    } memory;
    SF_VIRTUAL_IO access{[](void* self) { return static_cast<sf_count_t>(static_cast<Memory*>(self)->bytes.size()); },
                         [](sf_count_t offset, int whence, void* self) {
                             auto& file = *static_cast<Memory*>(self);
                             const auto size = static_cast<sf_count_t>(file.bytes.size());
                             return file.at = offset + (whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.at : size);
                         },
                         [](void* target, sf_count_t count, void* self) {
                             auto& file = *static_cast<Memory*>(self);
                             count = std::min(count, static_cast<sf_count_t>(file.bytes.size()) - file.at);
                             std::copy_n(file.bytes.begin() + file.at, count, static_cast<std::uint8_t*>(target));
                             file.at += count;
                             return count;
                         },
                         [](const void* source, sf_count_t count, void* self) {
                             auto& file = *static_cast<Memory*>(self);
                             file.bytes.resize(std::max(file.bytes.size(), static_cast<std::size_t>(file.at + count)));
                             std::copy_n(static_cast<const std::uint8_t*>(source), count, file.bytes.begin() + file.at);
                             file.at += count;
                             return count;
                         },
                         [](void* self) { return static_cast<Memory*>(self)->at; }};
    SF_INFO info{};
    info.format = format;
    info.channels = channels;
    info.samplerate = rate;
    SNDFILE* file = sf_open_virtual(&access, SFM_WRITE, &info, &memory);
    if (!file)
        return {};
    std::vector<float> samples(static_cast<std::size_t>(channels) * 700);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = 0.5F * std::sin(static_cast<float>(i) * 0.1F);
    sf_writef_float(file, samples.data(), 700);
    sf_close(file);
    return memory.bytes;
}

void WriteSounds(const Folder& folder)
{
    constexpr std::array<std::pair<const char*, int>, 14> codings{{{"u8", SF_FORMAT_PCM_U8},
                                                                   {"16", SF_FORMAT_PCM_16},
                                                                   {"24", SF_FORMAT_PCM_24},
                                                                   {"32", SF_FORMAT_PCM_32},
                                                                   {"float", SF_FORMAT_FLOAT},
                                                                   {"double", SF_FORMAT_DOUBLE},
                                                                   {"ulaw", SF_FORMAT_ULAW},
                                                                   {"alaw", SF_FORMAT_ALAW},
                                                                   {"ima", SF_FORMAT_IMA_ADPCM},
                                                                   {"ms", SF_FORMAT_MS_ADPCM},
                                                                   {"gsm", SF_FORMAT_GSM610},
                                                                   {"g721", SF_FORMAT_G721_32},
                                                                   {"nms16", SF_FORMAT_NMS_ADPCM_16},
                                                                   {"nms32", SF_FORMAT_NMS_ADPCM_32}}};
    constexpr std::array<std::pair<const char*, int>, 3> kinds{
        {{"wav", SF_FORMAT_WAV}, {"wavex", SF_FORMAT_WAVEX}, {"rf64", SF_FORMAT_RF64}}};
    const auto add = [&](const std::string& name, const Bytes& bytes) {
        if (!bytes.empty())
            folder.Add(name, bytes);
    };
    for (const auto& [kind, container] : kinds)
        for (const auto& [coding, format] : codings)
            for (const int channels : {1, 2})
                add(std::string(kind) + "-" + coding + "-" + std::to_string(channels),
                    Sound(container | format, channels, 8000));
    add("rifx", Sound(SF_FORMAT_WAV | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, 1, 22050));
    // Other formats that libsndfile reads. They are to be refused.
    add("flac", Sound(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 1, 8000));
    add("ogg", Sound(SF_FORMAT_OGG | SF_FORMAT_VORBIS, 1, 8000));
    add("aiff", Sound(SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 1, 8000));
    add("au", Sound(SF_FORMAT_AU | SF_FORMAT_PCM_16, 1, 8000));
    add("w64", Sound(SF_FORMAT_W64 | SF_FORMAT_PCM_16, 1, 8000));
}

void WriteRecordings(const Folder& folder)
{
    constexpr std::array<std::pair<const char*, int>, 12> kinds{{{"flac-16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                                                                 {"flac-24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
                                                                 {"vorbis", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
                                                                 {"opus", SF_FORMAT_OGG | SF_FORMAT_OPUS},
                                                                 {"mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III},
                                                                 {"aiff-16", SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
                                                                 {"aiff-float", SF_FORMAT_AIFF | SF_FORMAT_FLOAT},
                                                                 {"aiff-ima", SF_FORMAT_AIFF | SF_FORMAT_IMA_ADPCM},
                                                                 {"aiff-gsm", SF_FORMAT_AIFF | SF_FORMAT_GSM610},
                                                                 {"au-16", SF_FORMAT_AU | SF_FORMAT_PCM_16},
                                                                 {"au-ulaw", SF_FORMAT_AU | SF_FORMAT_ULAW},
                                                                 {"au-g721", SF_FORMAT_AU | SF_FORMAT_G721_32}}};
    for (const auto& [name, format] : kinds)
        for (const int channels : {1, 2})
            if (const Bytes bytes = Sound(format, channels, 8000); !bytes.empty())
                folder.Add(std::string(name) + "-" + std::to_string(channels), bytes);
}

void WriteCalendars(const Folder& folder)
{
    const auto whole = [](const std::string& entries) {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + entries + "END:VCALENDAR\r\n";
    };
    const auto event = [&](const std::string& lines) {
        return whole("BEGIN:VEVENT\r\nUID:a\r\nSUMMARY:Tea\r\n" + lines + "END:VEVENT\r\n");
    };
    const std::string start = "DTSTART:20261201T090000Z\r\n";
    folder.Add("event", event(start + "DTEND:20261201T100000Z\r\nDESCRIPTION:Green\\, or\\nblack\r\n"));
    folder.Add("day", event("DTSTART;VALUE=DATE:20261201\r\nSTATUS:CANCELLED\r\n"));
    folder.Add("folded", event(start + "DESCRIPTION:One\r\n  and two\r\n\tthree\r\n"));
    folder.Add("zone", whole("BEGIN:VTIMEZONE\r\nTZID:Far\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
                             "RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\r\nTZOFFSETFROM:+0500\r\nTZOFFSETTO:+0400\r\n"
                             "END:STANDARD\r\nEND:VTIMEZONE\r\nBEGIN:VEVENT\r\nDTSTART;TZID=Far:20261201T140000\r\n"
                             "END:VEVENT\r\n"));
    folder.Add("city", event("DTSTART;TZID=Europe/Berlin:20261201T140000\r\nRRULE:FREQ=WEEKLY;COUNT=4\r\n"));
    constexpr std::array<const char*, 8> rules{"FREQ=DAILY;INTERVAL=2",
                                               "FREQ=MONTHLY;BYDAY=2TU,-1FR;BYSETPOS=1",
                                               "FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=29",
                                               "FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO;WKST=SU",
                                               "FREQ=HOURLY;BYHOUR=9,17;UNTIL=20271231T000000Z",
                                               "FREQ=MINUTELY;BYMINUTE=7",
                                               "FREQ=SECONDLY;BYSECOND=30",
                                               "FREQ=YEARLY;BYYEARDAY=366,-1"};
    for (std::size_t i = 0; i < rules.size(); ++i)
        folder.Add("rule-" + std::to_string(i),
                   event("DTSTART:20200229T090000Z\r\nRRULE:" + std::string(rules.at(i)) + "\r\n"));
    folder.Add("dates", event(start + "RDATE:20261224T090000Z,20261231T090000Z\r\nEXDATE:20261201T090000Z\r\n"
                                      "RDATE;VALUE=PERIOD:20270101T090000Z/PT1H\r\n"));
    folder.Add("moved", whole("BEGIN:VEVENT\r\nUID:a\r\n" + start +
                              "RRULE:FREQ=DAILY\r\nEND:VEVENT\r\nBEGIN:VEVENT\r\nUID:a\r\n"
                              "RECURRENCE-ID:20261202T090000Z\r\nDTSTART:20261202T110000Z\r\nEND:VEVENT\r\n"));
    folder.Add("alarms", event(start + "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n"
                                       "BEGIN:VALARM\r\nTRIGGER;RELATED=END:P1D\r\nEND:VALARM\r\nBEGIN:VALARM\r\n"
                                       "TRIGGER;VALUE=DATE-TIME:20261130T080000Z\r\nEND:VALARM\r\n"));
    folder.Add("task", whole("BEGIN:VTODO\r\nSUMMARY:Pay\r\nDUE:20261205T120000\r\nSTATUS:COMPLETED\r\n"
                             "X-VOXMATE-DONE:1\r\nEND:VTODO\r\n"));
    folder.Add("two", event(start) + event(start));
}

void WriteReminders(const Folder& folder)
{
    const std::string call = voxmate::Slot({"Call", "07", "03", "2004", "09", "05", "Bank", "N"});
    const std::string done = voxmate::Slot({"Grüße", "29", "02", "2000", "23", "59", "", "Y"});
    const std::string largest =
        voxmate::Slot({std::string(50, 't'), "31", "12", "9999", "00", "00", std::string(49, 'd'), "N"});
    folder.Add("one", call);
    folder.Add("three", call + done + largest);
    folder.Add("cut", call + done.substr(0, 20));
    folder.Add("ended", call + std::string(128, '\0') + done);
    folder.Add("snoozed", call + voxmate::Slot({"Tea", "11", "-08", "2005", "00", "10", "", "N"}));
    folder.Add("blanks", voxmate::Slot({" Tea ", " 1 ", "2", "2005 ", "09", "05", " ", " Y "}));
    folder.Add("signs", voxmate::Slot({"Tea", "+1", "2", "2005", "+9", "-0", "", "N"}));
    folder.Add("tight", voxmate::Slot({std::string(52, 't'), "1", "2", "2005", "09", "05", std::string(49, 'd'), "N"}));
    folder.Add("text", "This is a text file and no list of reminders, though it has the name of one.\r\n");
}

void WriteArchives(const Folder& folder)
{
    const std::string head = "MIME-Version: 1.0\r\n";
    const std::string page = "<html><body>The =3D kettle.</body></html>\r\n";
    folder.Add("page", head + "Content-Type: text/html; charset=\"utf-8\"\r\n\r\n" + page);
    folder.Add("printable",
               head + "Content-Type: text/html\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n" + page);
    folder.Add("base64", head +
                             "Content-Type: text/plain;\r\n charset=iso-8859-2\r\nContent-Transfer-Encoding: base64\r\n"
                             "\r\nVGhlIGtldHRsZS4=\r\n");
    const std::string parts =
        "--b\r\nContent-Type: image/png\r\n\r\nPNG\r\n--b\r\nContent-Type: text/html\r\n\r\n" + page;
    folder.Add("parts", head + "Content-Type: multipart/related; boundary=b\r\n\r\n" + parts + "--b--\r\n");
    folder.Add("nested", head +
                             "Content-Type: multipart/mixed; boundary=\"a\"\r\n\r\n--a\r\n"
                             "Content-Type: multipart/related; boundary=b\r\n\r\n" +
                             parts + "--b--\r\n--a--\r\n");
}

void WriteTextFiles(const Folder& folder)
{
    using namespace std::string_view_literals;
    constexpr std::array<std::string_view, 10> texts{
        "The kettle.\r\nThe clock.\n\rThe hall."sv,
        "K\xC3\xA4the\r\n\xE2\x82\xAC \xF0\x9F\x98\x80\r\n"sv,
        "\xEF\xBB\xBFMark\n"sv,
        "K\xE4the J\xFCrgen \x80 \x81 \x9D\r"sv,
        "K\xC3\xA4the and J\xFCrgen"sv,
        "\xFF\xFEH\0i\0\r\0\n\0\x3D\xD8\x00\xDE"sv,
        "\xFE\xFF\0H\0i\0\n"sv,
        "H\0i\0 \0y\0o\0u\0\r\0\n\0"sv,
        "\x93\xFA\x96{\x8C\xEA \x82"sv,
        "\xCF\xF0\xE8\xE2\xE5\xF2 \x81\x30\x81\x30 \xD2"sv,
    };
    for (std::size_t i = 0; i < texts.size(); ++i)
        for (char codePage = 0; codePage < 8; ++codePage)
            folder.Add(std::to_string(i) + "-" + std::to_string(codePage), codePage + std::string(texts.at(i)));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const std::filesystem::path root(argv[1]);
    WriteCharacters(Folder(root / "acs"));
    WritePacked(Folder(root / "compression"));
    WriteArchives(Folder(root / "archive"));
    WriteTextFiles(Folder(root / "text"));
    WriteTexts(Folder(root / "markup"));
    WriteReminders(Folder(root / "reminders"));
    WriteSounds(Folder(root / "wave"));
    WriteRecordings(Folder(root / "recording"));
    WriteCalendars(Folder(root / "calendar"));
    return 0;
}
