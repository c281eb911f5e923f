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
    <message id="parley-la-error_invalid_number">
        <source>This number or text cannot be used.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_busy">
        <source>The phone is busy. Try again in a moment.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_not_supported">
        <source>This phone or its network does not support this.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_no_network">
        <source>There is no connection to the mobile network.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_not_allowed">
        <source>This is not allowed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_incorrect_password">
        <source>The password is wrong.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_no_answer">
        <source>There is no answer. Try again later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_cancelled">
        <source>This was cancelled.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_no_service">
        <source>The phone service is not running.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_no_call">
        <source>This has already ended.</source>
        <translation type="unfinished"></translation>
    </message>
    <message id="parley-la-error_failed">
        <source>This has failed.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
