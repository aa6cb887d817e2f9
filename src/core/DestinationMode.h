#pragma once

#include "core/RawValue.h"

#include <cstdint>

namespace vellumine {

/// Where written files go.
enum class DestinationMode : std::uint8_t {
    originalLocation, ///< beside each source
    selectedFolder, ///< into the one folder of the preferences
};

template <>
inline constexpr std::array choiceTable<DestinationMode> {
    ChoiceTexts<DestinationMode> {
        DestinationMode::originalLocation, "originalLocation", "Original Location" },
    ChoiceTexts<DestinationMode> {
        DestinationMode::selectedFolder, "selectedFolder", "Selected Folder" },
};
static_assert(isInDeclarationOrder<DestinationMode>());

} // namespace vellumine
