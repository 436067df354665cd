// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick

// A disc that grows for a moment whenever its number changes.
Rectangle {
    id: disc

    property int value: 0

    width: 160
    height: width
    radius: width / 2
    color: "#2f855a"

    onValueChanged: pulse.restart()

    Text {
        anchors.centerIn: parent
        text: disc.value
        color: "white"
        font.pixelSize: disc.width / 3
    }

    SequentialAnimation {
        id: pulse

        NumberAnimation { target: disc; property: "scale"; to: 1.15; duration: 90 }
        NumberAnimation { target: disc; property: "scale"; to: 1.0; duration: 160 }
    }
}
