#pragma once

#include <QLatin1StringView>
#include <QString>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <type_traits>

namespace vellumine {

template <typename T>
concept Enumeration = std::is_enum_v<T>;

/// How a choice is written: in the preferences and on the command line, and in a picker.
template <typename Choice> struct ChoiceTexts {
    Choice choice;
    const char* rawValue;
    const char* displayTitle;
};

/// Every case of a choice with its texts, in declaration order. Each enumeration specialises it as
/// a std::array of ChoiceTexts.
template <typename Choice> inline constexpr int choiceTable = 0;

/// The cases in declaration order, which is the order of the pickers.
template <Enumeration Choice> [[nodiscard]] constexpr auto allCases()
{
    constexpr auto& table = choiceTable<Choice>;
    std::array<Choice, std::size(table)> cases {};
    std::transform(table.begin(), table.end(), cases.begin(),
        [](const ChoiceTexts<Choice>& entry) { return entry.choice; });
    return cases;
}

/// The text that stands for the case in the preferences; it never changes.
template <Enumeration Choice> [[nodiscard]] QString rawValue(Choice choice)
{
    return QString::fromLatin1(choiceTable<Choice>.at(static_cast<std::size_t>(choice)).rawValue);
}

/// The identity of a case in lists: its raw value.
template <Enumeration Choice> [[nodiscard]] QString id(Choice choice)
{
    return rawValue(choice);
}

/// What a picker shows for the case.
template <Enumeration Choice> [[nodiscard]] QString displayTitle(Choice choice)
{
    return QString::fromLatin1(
        choiceTable<Choice>.at(static_cast<std::size_t>(choice)).displayTitle);
}

/// The case with exactly that raw value, upper and lower case told apart; none for another text.
template <Enumeration Choice> [[nodiscard]] std::optional<Choice> fromRawValue(QStringView text)
{
    for (const ChoiceTexts<Choice>& entry : choiceTable<Choice>) {
        if (text == QLatin1StringView(entry.rawValue)) {
            return entry.choice;
        }
    }
    return std::nullopt;
}

/// Whether the table's entries stand at the index of their case.
template <Enumeration Choice> [[nodiscard]] constexpr bool isInDeclarationOrder()
{
    std::size_t index = 0;
    for (const ChoiceTexts<Choice>& entry : choiceTable<Choice>) {
        if (static_cast<std::size_t>(entry.choice) != index++) {
            return false;
        }
    }
    return true;
}

} // namespace vellumine
