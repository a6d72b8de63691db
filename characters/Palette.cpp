#include "Palette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace voxmate::characters
{

namespace
{

constexpr std::size_t MostColours = 255; // without the transparent one

struct Bin {
    std::array<double, 3> colour{};
    double weight = 0;
};

struct Box {
    std::size_t first = 0;
    std::size_t last = 0; // one past
    double spread = 0;    // of its widest channel, by weight
    std::size_t channel = 0;
};

Box Measured(const std::vector<Bin>& bins, std::size_t first, std::size_t last)
{
    Box box{first, last, 0, 0};
    for (std::size_t c = 0; c < 3; ++c) {
        double weight = 0;
        double sum = 0;
        double squares = 0;
        for (std::size_t i = first; i < last; ++i) {
            weight += bins[i].weight;
            sum += bins[i].weight * bins[i].colour[c];
            squares += bins[i].weight * bins[i].colour[c] * bins[i].colour[c];
        }
        const double spread = squares - sum * sum / weight;
        if (last - first > 1 && spread > box.spread) {
            box.spread = spread;
            box.channel = c;
        }
    }
    return box;
}

std::array<double, 3> Mean(const std::vector<Bin>& bins, std::size_t first, std::size_t last)
{
    std::array<double, 3> mean{};
    double weight = 0;
    for (std::size_t i = first; i < last; ++i) {
        weight += bins[i].weight;
        for (std::size_t c = 0; c < 3; ++c)
            mean[c] += bins[i].weight * bins[i].colour[c];
    }
    for (double& value : mean)
        value /= weight;
    return mean;
}

double Distance(const std::array<double, 3>& a, const std::array<double, 3>& b)
{
    double sum = 0;
    for (std::size_t c = 0; c < 3; ++c)
        sum += (a[c] - b[c]) * (a[c] - b[c]);
    return sum;
}

// Divides the colours into boxes: again and again the widest box is cut in the middle.
std::vector<std::array<double, 3>> Cut(std::vector<Bin>& bins)
{
    std::vector<Box> boxes{Measured(bins, 0, bins.size())};
    while (boxes.size() < MostColours) {
        const auto widest = std::max_element(boxes.begin(), boxes.end(),
                                             [](const Box& a, const Box& b) { return a.spread < b.spread; });
        if (widest->spread <= 0)
            break;
        const Box box = *widest;
        const auto begin = bins.begin() + static_cast<std::ptrdiff_t>(box.first);
        const auto end = bins.begin() + static_cast<std::ptrdiff_t>(box.last);
        std::sort(begin, end, [&](const Bin& a, const Bin& b) {
            return a.colour[box.channel] != b.colour[box.channel] ? a.colour[box.channel] < b.colour[box.channel]
                                                                  : a.colour < b.colour;
        });
        const double middle = Mean(bins, box.first, box.last)[box.channel];
        std::size_t split = box.first + 1;
        while (split + 1 < box.last && bins[split].colour[box.channel] <= middle)
            ++split;
        *widest = Measured(bins, box.first, split);
        boxes.push_back(Measured(bins, split, box.last));
    }
    std::vector<std::array<double, 3>> centres;
    centres.reserve(boxes.size());
    for (const Box& box : boxes)
        centres.push_back(Mean(bins, box.first, box.last));
    return centres;
}

// Moves each palette colour to the mean of the colours that are nearest to it.
void Settle(const std::vector<Bin>& bins, std::vector<std::array<double, 3>>& centres)
{
    for (int round = 0; round < 8; ++round) {
        std::vector<std::array<double, 3>> sums(centres.size());
        std::vector<double> weights(centres.size());
        for (const Bin& bin : bins) {
            std::size_t nearest = 0;
            double least = std::numeric_limits<double>::max();
            for (std::size_t i = 0; i < centres.size(); ++i)
                if (const double distance = Distance(bin.colour, centres[i]); distance < least) {
                    least = distance;
                    nearest = i;
                }
            weights[nearest] += bin.weight;
            for (std::size_t c = 0; c < 3; ++c)
                sums[nearest][c] += bin.weight * bin.colour[c];
        }
        for (std::size_t i = 0; i < centres.size(); ++i)
            if (weights[i] > 0)
                for (std::size_t c = 0; c < 3; ++c)
                    centres[i][c] = sums[i][c] / weights[i];
    }
}

} // namespace

void Palette::Count(const QImage& frame)
{
    for (int y = 0; y < frame.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(frame.constScanLine(y));
        for (int x = 0; x < frame.width(); ++x)
            if (qAlpha(row[x]) != 0)
                ++counts_[row[x]];
    }
}

void Palette::Choose()
{
    // Similar colours are combined (6 bits a channel) to make this fast. A sorted map, because the order must not
    // depend on the hash.
    std::map<std::uint32_t, Bin> gathered;
    for (const auto& [colour, count] : counts_) {
        Bin& bin = gathered[(colour >> 2) & 0x3F3F3F];
        const std::array<int, 3> channels{qRed(colour), qGreen(colour), qBlue(colour)};
        for (std::size_t c = 0; c < 3; ++c)
            bin.colour[c] += static_cast<double>(count) * channels[c];
        bin.weight += count;
    }
    std::vector<Bin> bins;
    for (auto& [key, bin] : gathered) {
        for (double& value : bin.colour)
            value /= bin.weight;
        // With the square root large areas do not outvote small bright details (a glint in an eye).
        bin.weight = std::sqrt(bin.weight);
        bins.push_back(bin);
    }
    // The transparent index has a colour that no drawing uses, for programs that show it.
    colours_.assign(1, {255, 0, 255});
    if (!bins.empty()) {
        auto centres = Cut(bins);
        Settle(bins, centres);
        for (const auto& centre : centres)
            colours_.push_back({static_cast<std::uint8_t>(std::lround(centre[0])),
                                static_cast<std::uint8_t>(std::lround(centre[1])),
                                static_cast<std::uint8_t>(std::lround(centre[2]))});
    }
    colours_.resize(256);
}

std::uint8_t Palette::Nearest(QRgb colour)
{
    const auto known = nearest_.find(colour);
    if (known != nearest_.end())
        return known->second;
    int least = std::numeric_limits<int>::max();
    std::size_t nearest = 1;
    for (std::size_t i = 1; i < colours_.size(); ++i) {
        const int red = qRed(colour) - colours_[i].red;
        const int green = qGreen(colour) - colours_[i].green;
        const int blue = qBlue(colour) - colours_[i].blue;
        if (const int distance = red * red + green * green + blue * blue; distance < least) {
            least = distance;
            nearest = i;
        }
    }
    return nearest_[colour] = static_cast<std::uint8_t>(nearest);
}

std::vector<std::uint8_t> Palette::Indices(const QImage& frame)
{
    std::vector<std::uint8_t> indices;
    indices.reserve(static_cast<std::size_t>(frame.width()) * static_cast<std::size_t>(frame.height()));
    for (int y = 0; y < frame.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(frame.constScanLine(y));
        for (int x = 0; x < frame.width(); ++x)
            indices.push_back(qAlpha(row[x]) == 0 ? TransparentIndex : Nearest(row[x]));
    }
    return indices;
}

double Palette::MeanError() const
{
    double error = 0;
    double weight = 0;
    for (const auto& [colour, count] : counts_) {
        const auto found = nearest_.find(colour);
        if (found == nearest_.end())
            continue;
        const agent::Colour c = colours_[found->second];
        error += count * std::sqrt(Distance(
                             {static_cast<double>(qRed(colour)), static_cast<double>(qGreen(colour)),
                              static_cast<double>(qBlue(colour))},
                             {static_cast<double>(c.red), static_cast<double>(c.green), static_cast<double>(c.blue)}));
        weight += count;
    }
    return weight > 0 ? error / weight : 0;
}

} // namespace voxmate::characters
