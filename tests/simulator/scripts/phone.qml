// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQml 2.15
import QtQuick 2.15
import com.nimbo.calls 1.0
import com.nimbo.parley 1.0

// Screens without anything to see. They do what URLs say, such as "do:answer", and log what becomes
// of calls and messages.
Item {
    id: phone

    function nameOf(call) {
        return call.withheld ? "withheld" : call.number;
    }

    function idOf(name) {
        for (let row = 0; row < rows.count; ++row) {
            if (rows.objectAt(row).name === name)
                return rows.objectAt(row).callId;
        }
        return 0;
    }

    function act(url) {
        const words = decodeURIComponent(url.slice("do:".length)).split(" ");
        const call = words.length > 1 ? idOf(words[1]) : calls.ringing || calls.ongoing;
        const actions = {
            "answer": function() { calls.answer(call); },
            "hold-and-answer": function() { calls.holdAndAnswer(call); },
            "end-and-answer": function() { calls.endAndAnswer(call); },
            "end": function() { calls.hangUp(call); },
            "end-each": function() {
                words.slice(1).map(idOf).forEach(function(call) { calls.hangUp(call); });
            },
            "end-all": function() { calls.hangUpAll(); },
            "swap": function() { calls.swap(); },
            "join": function() { calls.join(); },
            "split": function() { calls.split(call); },
            "tones": function() { calls.sendTones(words[1]); },
            "reply": function() { calls.dialogue.reply(words[1]); },
            "message": function() { messages.send(words[1], words.slice(2).join(" ")); }
        };
        actions[words[0]]();
    }

    Calls {
        id: calls

        readonly property string ready: modems.join(" ")

        onReadyChanged: console.info(ready === "" ? "no modem" : "ready: " + ready)
        onEnded: function(call) { console.info(phone.nameOf(call) + ": ended"); }
        onFailed: function(action, call, number, error, why) { console.info(action + ": " + why); }
    }

    Connections {
        target: calls.dialogue

        function onTextChanged() {
            if (calls.dialogue.text !== "")
                console.info("the network says: " + calls.dialogue.text.replace("\n", ", "));
        }
    }

    Messages {
        id: messages

        onSent: function(message) { console.info("sent: " + message.text); }
        onFailed: function(message) { console.info("not sent: " + message.text); }
    }

    Instantiator {
        id: rows

        model: calls
        delegate: QtObject {
            required property int callId
            required property string number
            required property bool withheld
            required property string callState
            required property bool conference
            required property bool remoteHeld
            required property bool emergency
            readonly property string name: withheld ? "withheld" : number
            readonly property string words: name + ": " + callState
                                            + (conference ? " in a conference" : "")
                                            + (remoteHeld ? ", held by the other side" : "")
                                            + (emergency ? ", an emergency" : "")

            onWordsChanged: console.info(words)
        }
    }

    ParleyUiAdaptor {
        onDial: function(number) { calls.dial(number); }
        onDialViaModem: function(modemPath, number) { calls.dial(number, modemPath); }
        onOpenUrl: function(urls) { phone.act(urls[0]); }
    }
}
