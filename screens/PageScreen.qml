// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

BaseScreen {
    id: page

    readonly property int most: 5
    property var content: ({urls: [], more: 0})

    function open(urls) {
        var head = [];
        for (var i = 0; i < urls.length && i < most; ++i)
            head.push(Words.clean(urls[i]));
        content = {urls: head, more: urls.length - head.length};
    }

    summary: "page " + content.urls.join(" ") + (content.more > 0 ? " and " + content.more + " more" : "")

    title: heading.text

    Pane {
        Column {
            id: header

            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            spacing: Style.px(10)
            y: Style.px(20)

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                color: Style.accent
                name: "page"
                size: 44
            }

            Label {
                id: heading

                size: 20
                text: page.content.urls.length > 1 ? qsTr("Open pages") : qsTr("Open page")
                width: parent.width
            }
        }
    }

    Pane {
        second: true

        Column {
            anchors.left: parent.left
            anchors.leftMargin: Style.px(20)
            anchors.right: parent.right
            anchors.rightMargin: Style.px(20)
            spacing: Style.px(8)
            y: Style.px(20) + (Style.wide ? 0 : header.height + Style.px(18))

            Repeater {
                model: page.content.urls

                Rectangle {
                    border.color: Style.outline
                    border.width: Math.max(1, Style.px(1))
                    color: Style.surface
                    height: url.height + Style.px(22)
                    radius: Style.px(12)
                    width: parent.width

                    Label {
                        id: url

                        anchors.left: parent.left
                        anchors.margins: Style.px(14)
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        horizontalAlignment: Text.AlignLeft
                        maximumLineCount: page.content.urls.length > 1 ? 2 : 10
                        size: 14
                        text: modelData
                        wrapMode: Text.WrapAnywhere
                    }
                }
            }

            Label {
                id: rest

                color: Style.dimText
                height: Style.px(24)
                size: 13
                text: qsTr("and %n more", "", page.content.more)
                visible: page.content.more > 0
                width: parent.width
            }
        }
    }

    Pane {
        RoundButton {
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.px(22)
            anchors.horizontalCenter: parent.horizontalCenter
            icon: "close"
            label: qsTr("Close")
            size: 60
            onClicked: page.closeRequested()
        }
    }
}
