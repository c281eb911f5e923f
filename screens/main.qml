// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "focus.js" as Focus
import "text.js" as Words

Rectangle {
    id: root

    /// The description of the screen's content that is logged.
    readonly property string shown: __window.visible ? phone.topmost.summary : "hidden"
    readonly property Item focused: __window.activeFocusItem
    property bool loaded: false

    function report() {
        Log.tell("screen: " + shown);
    }

    // Keep the keyboard focus in the topmost screen.
    function keepFocus() {
        if (!Focus.isWithin(focused, phone.topmost))
            phone.topmost.forceActiveFocus();
    }

    function takeFocus() {
        phone.topmost.forceActiveFocus();
    }

    function moveFocus(item) {
        if (item)
            item.forceActiveFocus(Qt.TabFocusReason);
    }

    function numberIn(text) {
        return Words.plainNumber(Words.clean(text));
    }

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Words.isRightToLeft()

    focus: true
    height: 640
    width: 360

    gradient: Gradient {
        GradientStop { position: 0; color: Style.backgroundTop }
        GradientStop { position: 1; color: Style.backgroundBottom }
    }

    Component.onCompleted: {
        __window.resizeMode = 1; // From now on the root object follows the size of the view.
        loaded = true;
        report();
        keepFocus();
    }
    onShownChanged: {
        if (loaded)
            report();
    }
    onFocusedChanged: Qt.callLater(keepFocus)

    Keys.onTabPressed: moveFocus(Focus.following(phone.topmost, focused, true))
    Keys.onBacktabPressed: moveFocus(Focus.following(phone.topmost, focused, false))
    Keys.onLeftPressed: moveFocus(Focus.beside(phone.topmost, focused, -1, 0))
    Keys.onRightPressed: moveFocus(Focus.beside(phone.topmost, focused, 1, 0))
    Keys.onUpPressed: moveFocus(Focus.beside(phone.topmost, focused, 0, -1))
    Keys.onDownPressed: moveFocus(Focus.beside(phone.topmost, focused, 0, 1))

    Binding {
        target: Style
        property: "unit"
        value: Math.max(0.3, phone.stage.unit)
    }

    Binding {
        target: Style
        property: "wide"
        value: phone.stage.wide
    }

    Binding {
        target: Style
        property: "animated"
        value: __window.visible
    }

    ParleyUiAdaptor {
        onShow: phone.show()
        onShowOngoing: phone.showOngoing()
        onOpenUrl: function(arg) { requests.open(arg); }
        onDial: function(number) { phone.place(numberIn(number), ""); }
        onDialViaModem: function(modemPath, number) {
            phone.place(numberIn(number), Words.clean(modemPath));
        }
        onShowCellularErrorDialog: phone.showError("")
        onOpenContactCard: function(number) { phone.presentContact(numberIn(number)); }
        onToggleCall: phone.toggleCall()
    }

    UrlRequests {
        id: requests

        onTelephone: function(number) { phone.presentPad(number); }
        onRemind: function(number, seconds) { phone.presentReminder(number, seconds); }
        onForget: function(number) { phone.forget(number); }
        onReminders: phone.presentReminders()
        onReply: function(index) { phone.sendReply(index); }
        onReplies: function(command, text, index) { phone.changeReplies(command, text, index); }
        onPages: function(urls) { phone.presentPages(urls); }
    }

    Phone {
        id: phone

        anchors.fill: parent
        onTopmostChanged: Qt.callLater(root.takeFocus)
        onUrlsRequested: function(urls) { requests.open(urls); }
    }
}
