pragma Singleton
import QtQuick

// How long things take to move, in milliseconds. With reduced motion everything happens at once.
QtObject {
    property bool reducedMotion: false
    readonly property int quick: reducedMotion ? 0 : 150
    readonly property int calm: reducedMotion ? 0 : 250
}
