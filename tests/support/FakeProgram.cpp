#include "support/FakeProgram.h"

#include "support/TestImages.h"

#include <set>
#include <string>

namespace vellumine::test {

void writeProgram(const std::filesystem::path& path, std::string_view body)
{
    writeFile(path, "#!/bin/sh\n" + std::string(body));
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

std::string listing(const std::filesystem::path& folder)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : " ") + name;
    }
    return text;
}

} // namespace vellumine::test
