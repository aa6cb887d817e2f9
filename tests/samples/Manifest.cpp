#include "samples/Manifest.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <stdexcept>

namespace vellumine::test {

namespace {

std::vector<std::string> fieldsOf(const std::string& line)
{
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = line.find('\t', start);
        fields.push_back(line.substr(start, end - start));
        if (end == std::string::npos) {
            return fields;
        }
        start = end + 1;
    }
}

/// Gives the fields of a line their column's name.
class Columns {
public:
    explicit Columns(const std::string& header)
    {
        for (const std::string& name : fieldsOf(header)) {
            m_index.emplace(name, m_index.size());
        }
    }

    [[nodiscard]] const std::string& of(
        const std::vector<std::string>& fields, const std::string& name) const
    {
        return fields.at(m_index.at(name));
    }

private:
    std::map<std::string, std::size_t> m_index;
};

std::int64_t numberOf(const std::string& text)
{
    return text.empty() ? 0 : std::stoll(text);
}

std::optional<Expected> expectedOf(const std::string& text)
{
    const std::map<std::string, Expected> values { { "decodes", Expected::converted },
        { "refuse", Expected::refused }, { "either", Expected::either } };
    const auto found = values.find(text);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::vector<Sample> readManifest(const std::filesystem::path& folder)
{
    std::ifstream file(folder / "MANIFEST.tsv");
    std::string line;
    if (!std::getline(file, line)) {
        throw std::runtime_error("the manifest cannot be read");
    }
    const Columns columns(line);
    std::vector<Sample> samples;
    while (std::getline(file, line)) {
        const std::vector<std::string> fields = fieldsOf(line);
        const std::optional<Expected> expected = expectedOf(columns.of(fields, "expected"));
        if (!expected) {
            continue; // an archive, which has a test of its own
        }
        samples.push_back({ .path = unescaped(columns.of(fields, "path")),
            .kind = columns.of(fields, "kind"),
            .width = numberOf(columns.of(fields, "oriented_width")),
            .height = numberOf(columns.of(fields, "oriented_height")),
            .expected = *expected });
    }
    return samples;
}

std::string unescaped(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        if (text.front() != '\\') {
            result += text.front();
            text.remove_prefix(1);
        } else if (text.starts_with("\\x") && text.size() >= 4) {
            result += static_cast<char>(std::stoi(std::string(text.substr(2, 2)), nullptr, 16));
            text.remove_prefix(4);
        } else if (text.starts_with("\\n") || text.starts_with("\\t")) {
            result += text.at(1) == 'n' ? '\n' : '\t';
            text.remove_prefix(2);
        } else if (text.starts_with("\\\\")) {
            result += '\\';
            text.remove_prefix(2);
        } else {
            throw std::runtime_error("unknown escape in " + std::string(text));
        }
    }
    return result;
}

} // namespace vellumine::test
