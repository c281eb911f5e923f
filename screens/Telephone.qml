// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.calls 1.0

/// What the screens phone with. No other file needs the module, which a tool may not have.
QtObject {
    id: telephone

    /// Whether the phone is to ring.
    property bool rings: false
    /// Whether the user speaks with somebody.
    property bool speaks: false

    /// "starting", "ready", "hung", "no service" or "no bus".
    readonly property string status: {
        switch (calls.status) {
        case Telephony.Ready: return "ready";
        case Telephony.Hung: return "hung";
        case Telephony.NoService: return "no service";
        case Telephony.NoBus: return "no bus";
        }
        return "starting";
    }

    /// The calls or the state of one of them have changed.
    signal changed()
    signal ended(var call)
    /// An action has failed. Without a network, no other call can be made either; "why" is empty if
    /// the stack does not say more.
    signal failed(string action, int call, string number, string why, bool isWithoutNetwork)
    signal sent(var message)
    signal notSent(var message, string why)

    /// Returns all calls, each with its roles by name.
    function list() {
        var found = [];
        for (var row = 0; row < calls.count; ++row)
            found.push(calls.call(calls.data(calls.index(row, 0), Qt.UserRole)));
        return found;
    }

    function isWithoutNetwork(error) {
        return [Telephony.Failed, Telephony.NotRegistered, Telephony.NotAttached, Telephony.SimNotReady,
                Telephony.NoStack, Telephony.NoAnswer, Telephony.NoModem].indexOf(error) >= 0;
    }

    onSpeaksChanged: {
        if (!speaks) {
            audio.muted = false;
            audio.speaker = false;
        }
    }

    readonly property Calls calls: Calls {
        onDataChanged: telephone.changed()
        onEnded: function(call) { telephone.ended(call); }
        onFailed: function(action, call, number, error, explanation) {
            var isSilent = action === "dial" && error === Telephony.Failed;
            telephone.failed(action, call, number, isSilent ? "" : explanation,
                             telephone.isWithoutNetwork(error));
        }
        onRowsInserted: telephone.changed()
        onRowsRemoved: telephone.changed()
    }

    readonly property Messages messages: Messages {
        onFailed: function(message, error, explanation) { telephone.notSent(message, explanation); }
        onSent: function(message) { telephone.sent(message); }
    }

    readonly property CallAudio audio: CallAudio {
        voiceCall: telephone.speaks
    }

    readonly property Ringer ringer: Ringer {
        active: telephone.rings
    }
}
