#include "imaging/codecs/heic/HeicContainer.h"

#include "imaging/codecs/heic/HeicBoxes.h"

#include <map>
#include <vector>

namespace vellumine::imaging::heic {

namespace {

/// Overlay of grids of tiles, each with its alpha: real files need four.
constexpr int deepestChain = 8;
/// Decodes that one picture may cause. The largest grid has 65,536 tiles.
constexpr std::uint64_t mostDecodes = 1'000'000;

/// Decoding item `from` decodes item `to`.
struct Dependency {
    std::uint64_t from;
    std::uint64_t to;
};

tl::unexpected<Error> malformed()
{
    return failure(Error::Kind::malformed, "a damaged box of metadata or references");
}

/// One kind of reference of one item: its number, the count of the others, their numbers.
Result<void> readReference(
    const Box& box, std::size_t idBytes, std::vector<Dependency>& dependencies)
{
    constexpr std::size_t countBytes = 2;
    const ByteSpan content = box.content;
    if (content.size() < idBytes + countBytes) {
        return malformed();
    }
    const std::uint64_t from = bigEndian(content.first(idBytes));
    const std::uint64_t count = bigEndian(content.subspan(idBytes, countBytes));
    const ByteSpan others = content.subspan(idBytes + countBytes);
    if (others.size() < count * idBytes) {
        return malformed();
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t to = bigEndian(others.subspan(i * idBytes, idBytes));
        if (box.type == "dimg") { // from is derived from to
            dependencies.push_back({ from, to });
        } else if (box.type == "auxl") { // from is the alpha (or so) of to
            dependencies.push_back({ to, from });
        }
    }
    return {};
}

/// The content of an `iref` box.
Result<void> readReferences(ByteSpan content, std::vector<Dependency>& dependencies)
{
    constexpr std::size_t versionAndFlags = 4;
    if (content.size() < versionAndFlags) {
        return malformed();
    }
    const std::size_t idBytes = std::to_integer<int>(content[0]) == 0 ? 2 : 4;
    BoxWalk walk(content.subspan(versionAndFlags));
    while (const auto box = walk.next()) {
        if (auto ok = readReference(*box, idBytes, dependencies); !ok) {
            return ok;
        }
    }
    return walk.hasRest() ? malformed() : Result<void>();
}

/// The content of a `meta` box.
Result<std::vector<Dependency>> readDependencies(ByteSpan content)
{
    constexpr std::size_t versionAndFlags = 4;
    if (content.size() < versionAndFlags) {
        return malformed();
    }
    std::vector<Dependency> dependencies;
    BoxWalk walk(content.subspan(versionAndFlags));
    while (const auto box = walk.next()) {
        if (box->type == "iref") {
            if (auto ok = readReferences(box->content, dependencies); !ok) {
                return tl::unexpected(ok.error());
            }
        }
    }
    if (walk.hasRest()) {
        return malformed();
    }
    return dependencies;
}

/// Starts at every item at once and goes one step at a time, counting the ways to arrive: there
/// must be an end, and soon.
bool comeToAnEnd(const std::vector<Dependency>& dependencies)
{
    std::map<std::uint64_t, std::uint64_t> arrivals;
    for (const Dependency& dependency : dependencies) {
        arrivals[dependency.from] = 1;
    }
    for (int step = 0; step < deepestChain; ++step) {
        std::map<std::uint64_t, std::uint64_t> next;
        std::uint64_t total = 0;
        for (const auto& [from, to] : dependencies) {
            if (const auto ways = arrivals.find(from); ways != arrivals.end()) {
                next[to] += ways->second;
                total += ways->second;
            }
            if (total > mostDecodes) {
                return false;
            }
        }
        if (next.empty()) {
            return true;
        }
        arrivals = std::move(next);
    }
    return false;
}

} // namespace

Result<void> checkContainer(ByteSpan file)
{
    BoxWalk walk(file);
    while (const auto box = walk.next()) {
        if (box->type != "meta") {
            continue;
        }
        // Inside this box, the letters are that box: pixels stand elsewhere.
        if (asText(box->content).find("av1C") != std::string_view::npos) {
            return failure(Error::Kind::unsupported, "a picture coded as AV1");
        }
        const auto dependencies = readDependencies(box->content);
        if (!dependencies) {
            return tl::unexpected(dependencies.error());
        }
        if (!comeToAnEnd(*dependencies)) {
            return failure(Error::Kind::malformed, "pictures that are made of each other");
        }
    }
    return {};
}

} // namespace vellumine::imaging::heic
