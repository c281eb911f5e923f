// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Layouts 1.15

/// The rules of one filter: the default, and a row for each SIM that is present or has a rule.
ColumnLayout {
    id: root

    property string filter
    property string title
    property var rules: []
    property var sims: []
    readonly property string fallback: rules.length > 0 ? rules[0].action : ""
    readonly property var imsis: {
        var all = [];
        var add = function(entry) {
            if (entry.imsi !== "" && all.indexOf(entry.imsi) < 0)
                all.push(entry.imsi);
        };
        sims.forEach(add);
        rules.forEach(add);
        return all;
    }

    // The first rule for a SIM is the one that counts.
    function actionFor(imsi) {
        for (var i = 1; i < rules.length; ++i) {
            if (rules[i].imsi === imsi)
                return rules[i].action;
        }
        return "none";
    }

    function named(action) {
        return /^[0-9]+$/.test(action) ? " (" + action + ")" : "";
    }

    Layout.fillWidth: true
    spacing: 3
    visible: rules.length > 0

    RowLayout {
        Words {
            Layout.fillWidth: true
            text: root.title + ", default" + root.named(root.fallback)
        }
        Choice {
            actions: ["block", "allow", "hangup"]
            current: root.fallback
            name: root.filter + " default"
            onChosen: function(action) { panel.run(["default", root.filter, action]); }
        }
    }
    Repeater {
        model: root.imsis.length

        RowLayout {
            readonly property string imsi: root.imsis[index] || ""
            readonly property string has: root.actionFor(imsi)

            Words {
                Layout.fillWidth: true
                color: Look.dimText
                text: imsi + root.named(has)
            }
            Choice {
                current: has
                name: root.filter + " " + imsi
                onChosen: function(action) { panel.run(["rule", root.filter, imsi, action]); }
            }
        }
    }
}
