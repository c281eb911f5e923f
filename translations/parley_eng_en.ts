<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="parley-ap-name">
        <source>Phone</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-me-please_call_later">
        <source>Please call later</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-me-cant_talk_at_the_moment">
        <source>I can&apos;t talk at the moment</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-me-will_call_back">
        <source>I will call back</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-he-reminder">
        <source>Reminder</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-bt-call">
        <source>Call</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-bt-in_10_minutes">
        <source>In 10 minutes</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-due_since">
        <source>Due since %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
