// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// An icon, drawn with a pixel for each of the display's. A canvas does that with every renderer;
/// shapes have smooth edges only where the renderer samples a pixel more than once.
Canvas {
    id: icon

    property string name
    property color color: Style.text
    property real size: 24
    /// What the icon tells the user; empty if it only decorates.
    property string meaning

    Accessible.ignored: !enabled || meaning === ""
    Accessible.name: meaning
    Accessible.role: Accessible.Graphic

    height: width
    width: Style.px(size)

    onColorChanged: requestPaint()
    onNameChanged: requestPaint()
    onPaint: {
        var pen = getContext("2d");
        pen.reset();
        pen.scale(width / 24, height / 24);
        pen.fillStyle = color;
        pen.strokeStyle = color;
        pen.lineWidth = 1.8;
        pen.lineCap = "round";
        pen.lineJoin = "round";
        if (shapes[name])
            shapes[name](pen);
    }

    readonly property var shapes: ({
        "call": function(pen) {
            pen.translate(12.6, 11.4);
            pen.rotate(-Math.PI * 3 / 4);
            icon.handset(pen);
        },
        "end": function(pen) {
            pen.translate(12, 12.8);
            icon.handset(pen);
        },
        "backspace": function(pen) {
            icon.line(pen, [2, 12, 8, 5.5, 21, 5.5, 21, 18.5, 8, 18.5, 2, 12]);
            icon.line(pen, [11.5, 9.2, 17, 14.8]);
            icon.line(pen, [17, 9.2, 11.5, 14.8]);
        },
        "mute": function(pen) {
            pen.beginPath();
            pen.roundedRect(9, 2.5, 6, 11.5, 3, 3);
            pen.fill();
            pen.beginPath();
            pen.arc(12, 11, 6, 0, Math.PI, false);
            pen.stroke();
            icon.line(pen, [12, 17, 12, 21]);
            icon.line(pen, [8.5, 21, 15.5, 21]);
            icon.line(pen, [4, 3, 20, 21]);
        },
        "speaker": function(pen) {
            icon.line(pen, [3.5, 9.5, 7, 9.5, 12, 5.5, 12, 18.5, 7, 14.5, 3.5, 14.5, 3.5, 9.5]);
            pen.fill();
            pen.beginPath();
            pen.arc(12, 12, 4.5, -0.75, 0.75, false);
            pen.stroke();
            pen.beginPath();
            pen.arc(12, 12, 8.5, -0.8, 0.8, false);
            pen.stroke();
        },
        "keypad": function(pen) {
            for (var i = 0; i < 9; ++i)
                icon.dot(pen, 5.5 + 6.5 * (i % 3), 5.5 + 6.5 * Math.floor(i / 3), 1.7);
        },
        "close": function(pen) {
            icon.line(pen, [6, 6, 18, 18]);
            icon.line(pen, [18, 6, 6, 18]);
        },
        "bell": function(pen) {
            pen.beginPath();
            pen.moveTo(4, 17);
            pen.bezierCurveTo(6.2, 15, 6.3, 13, 6.3, 10.2);
            pen.bezierCurveTo(6.3, 2.4, 17.7, 2.4, 17.7, 10.2);
            pen.bezierCurveTo(17.7, 13, 17.8, 15, 20, 17);
            pen.closePath();
            pen.stroke();
            icon.line(pen, [12, 2.6, 12, 4]);
            pen.beginPath();
            pen.arc(12, 18.6, 2.4, 0.25, Math.PI - 0.25, false);
            pen.stroke();
        },
        "person": function(pen) {
            icon.dot(pen, 12, 8.3, 4.1);
            pen.beginPath();
            pen.moveTo(4, 20.5);
            pen.bezierCurveTo(4, 11.7, 20, 11.7, 20, 20.5);
            pen.closePath();
            pen.fill();
        },
        "page": function(pen) {
            pen.lineWidth = 1.5;
            pen.beginPath();
            pen.arc(12, 12, 9.3, 0, Math.PI * 2, false);
            pen.stroke();
            pen.beginPath();
            pen.ellipse(8, 2.7, 8, 18.6);
            pen.stroke();
            icon.line(pen, [3.4, 9, 20.6, 9]);
            icon.line(pen, [3.4, 15, 20.6, 15]);
        },
        "barred": function(pen) {
            pen.lineWidth = 2.2;
            pen.beginPath();
            pen.arc(12, 12, 9, 0, Math.PI * 2, false);
            pen.stroke();
            icon.line(pen, [5.7, 5.7, 18.3, 18.3]);
        },
        "sim": function(pen) {
            icon.line(pen, [5, 2.5, 14, 2.5, 19, 7.5, 19, 21.5, 5, 21.5, 5, 2.5]);
            pen.beginPath();
            pen.roundedRect(8.5, 11.5, 7, 6.5, 1, 1);
            pen.fill();
        },
        "message": function(pen) {
            icon.line(pen, [3, 4.5, 21, 4.5, 21, 16.5, 11, 16.5, 6.5, 20.5, 6.5, 16.5, 3, 16.5, 3, 4.5]);
            icon.line(pen, [7.5, 9, 16.5, 9]);
            icon.line(pen, [7.5, 12.2, 13.5, 12.2]);
        },
        "remove": function(pen) {
            icon.line(pen, [4, 6.5, 20, 6.5]);
            icon.line(pen, [9.5, 6.5, 9.5, 3.5, 14.5, 3.5, 14.5, 6.5]);
            icon.line(pen, [6, 6.5, 7, 20.5, 17, 20.5, 18, 6.5]);
            icon.line(pen, [10.2, 10.5, 10.2, 16.5]);
            icon.line(pen, [13.8, 10.5, 13.8, 16.5]);
        },
        "add": function(pen) {
            icon.line(pen, [12, 5, 12, 19]);
            icon.line(pen, [5, 12, 19, 12]);
        },
        "hold": function(pen) {
            icon.line(pen, [8.5, 5.5, 8.5, 18.5]);
            icon.line(pen, [15.5, 5.5, 15.5, 18.5]);
        },
        "resume": function(pen) {
            icon.line(pen, [8, 5.5, 18, 12, 8, 18.5, 8, 5.5]);
            pen.fill();
        },
        "swap": function(pen) {
            icon.line(pen, [4, 8.5, 19, 8.5, 15, 4.5]);
            icon.line(pen, [20, 15.5, 5, 15.5, 9, 19.5]);
        },
        "join": function(pen) {
            icon.line(pen, [5, 4, 12, 11.5, 12, 20]);
            icon.line(pen, [19, 4, 12, 11.5]);
            icon.line(pen, [8.5, 16.5, 12, 20, 15.5, 16.5]);
        },
        "check": function(pen) {
            icon.line(pen, [4.5, 12.5, 9.8, 18, 19.5, 6.5]);
        },
        "undo": function(pen) {
            pen.beginPath();
            pen.arc(12, 12.5, 7.5, -Math.PI * 0.85, Math.PI * 0.75, false);
            pen.stroke();
            icon.line(pen, [4.6, 3.8, 4.9, 9.4, 10.3, 8.6]);
        },
        "network": function(pen) {
            for (var i = 0; i < 4; ++i) {
                pen.beginPath();
                pen.roundedRect(3 + 5 * i, 16.5 - 4 * i, 3, 4 + 4 * i, 1, 1);
                pen.fill();
            }
            icon.line(pen, [3, 3.5, 8.5, 9]);
            icon.line(pen, [8.5, 3.5, 3, 9]);
        }
    })

    function line(pen, points) {
        pen.beginPath();
        pen.moveTo(points[0], points[1]);
        for (var i = 2; i < points.length; i += 2)
            pen.lineTo(points[i], points[i + 1]);
        pen.stroke();
    }

    function dot(pen, x, y, radius) {
        pen.beginPath();
        pen.arc(x, y, radius, 0, Math.PI * 2, false);
        pen.fill();
    }

    function handset(pen) {
        pen.beginPath();
        pen.moveTo(-10, 0.8);
        pen.bezierCurveTo(-8.2, -6, 8.2, -6, 10, 0.8);
        pen.lineTo(9.8, 3.4);
        pen.lineTo(5.4, 2.6);
        pen.lineTo(5, -0.6);
        pen.bezierCurveTo(2, -1.6, -2, -1.6, -5, -0.6);
        pen.lineTo(-5.4, 2.6);
        pen.lineTo(-9.8, 3.4);
        pen.closePath();
        pen.fill();
        pen.stroke();
    }
}
