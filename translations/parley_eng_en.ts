<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="parley-ap-name">
        <source>Phone</source>
        <extracomment>The name of the program.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-me-please_call_later">
        <source>Please call later</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-me-cant_talk_at_the_moment">
        <source>I can&apos;t talk at the moment</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-me-will_call_back">
        <source>I will call back</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-he-reminder">
        <source>Reminder</source>
        <extracomment>The title of a notification that it is time to call somebody without a name and a number.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-bt-call">
        <source>Call</source>
        <extracomment>A button of a notification: calls the person.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-bt-in_10_minutes">
        <source>In 10 minutes</source>
        <extracomment>A button of a notification: shows it again in 10 minutes.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-due_since">
        <source>Due since %1</source>
        <extracomment>%1 is a time, or a date and a time if that was on another day.</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
