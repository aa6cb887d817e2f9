#pragma once

#include "core/RawValue.h"

#include <cstdint>

namespace vellumine {

/// Where written files go.
enum class DestinationMode : std::uint8_t {
    OriginalLocation, ///< beside each source
    SelectedFolder, ///< into the one folder of the preferences
};

template <>
inline constexpr std::array choiceTable<DestinationMode> {
    ChoiceTexts<DestinationMode> {
        DestinationMode::OriginalLocation, "originalLocation", "Original Location" },
    ChoiceTexts<DestinationMode> {
        DestinationMode::SelectedFolder, "selectedFolder", "Selected Folder" },
};
static_assert(isInDeclarationOrder<DestinationMode>());

} // namespace vellumine
