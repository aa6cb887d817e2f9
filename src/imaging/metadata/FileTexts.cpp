#include "imaging/metadata/FileTexts.h"

#include <utility>

namespace vellumine::imaging {

namespace {

std::size_t bytesOf(const FileText& text)
{
    return text.keyword.size() + text.content.size()
        + (text.international
                ? text.international->language.size() + text.international->keyword.size()
                : 0);
}

} // namespace

bool FileTexts::add(FileText text)
{
    const std::size_t bytes = bytesOf(text);
    if (isFull() || bytes > mostBytes - m_bytes) {
        return false;
    }
    m_bytes += bytes;
    m_texts.push_back(std::move(text));
    return true;
}

} // namespace vellumine::imaging
