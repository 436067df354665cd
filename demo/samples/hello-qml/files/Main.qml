// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

ApplicationWindow {
    id: window

    property int count: 0

    width: 360
    height: 480
    visible: true
    title: qsTr("Hello QML")

    ColumnLayout {
        anchors.centerIn: parent
        spacing: 24

        Counter {
            Layout.alignment: Qt.AlignHCenter
            value: window.count
        }

        Button {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Say hello")
            onClicked: ++window.count
        }
    }
}
