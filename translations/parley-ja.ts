<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en">
<context>
    <name></name>
    <message id="parley-ap-name">
        <source>Phone</source>
        <extracomment>The name of the program.</extracomment>
        <translation type="unfinished">電話</translation>
    </message>
    <message id="parley-me-please_call_later">
        <source>Please call later</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">後でかけ直してください</translation>
    </message>
    <message id="parley-me-cant_talk_at_the_moment">
        <source>I can&apos;t talk at the moment</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">今は電話に出られません</translation>
    </message>
    <message id="parley-me-will_call_back">
        <source>I will call back</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">折り返し電話します</translation>
    </message>
    <message id="parley-he-reminder">
        <source>Reminder</source>
        <extracomment>The title of a notification that it is time to call somebody without a name and a number.</extracomment>
        <translation type="unfinished">リマインダー</translation>
    </message>
    <message id="parley-bt-call">
        <source>Call</source>
        <extracomment>A button of a notification: calls the person.</extracomment>
        <translation type="unfinished">電話をかける</translation>
    </message>
    <message id="parley-bt-in_10_minutes">
        <source>In 10 minutes</source>
        <extracomment>A button of a notification: shows it again in 10 minutes.</extracomment>
        <translation type="unfinished">10分後</translation>
    </message>
    <message id="parley-la-due_since">
        <source>Due since %1</source>
        <extracomment>%1 is a time, or a date and a time if that was on another day.</extracomment>
        <translation type="unfinished">%1 から未対応</translation>
    </message>
    <message id="parley-la-error_invalid_number">
        <source>This number or text cannot be used.</source>
        <translation type="unfinished">この番号またはテキストは使用できません。</translation>
    </message>
    <message id="parley-la-error_busy">
        <source>The phone is busy. Try again in a moment.</source>
        <translation type="unfinished">電話は使用中です。しばらくしてからもう一度お試しください。</translation>
    </message>
    <message id="parley-la-error_not_supported">
        <source>This phone or its network does not support this.</source>
        <translation type="unfinished">この電話またはネットワークは対応していません。</translation>
    </message>
    <message id="parley-la-error_no_network">
        <source>There is no connection to the mobile network.</source>
        <translation type="unfinished">モバイルネットワークに接続されていません。</translation>
    </message>
    <message id="parley-la-error_not_allowed">
        <source>This is not allowed.</source>
        <translation type="unfinished">これは許可されていません。</translation>
    </message>
    <message id="parley-la-error_incorrect_password">
        <source>The password is wrong.</source>
        <translation type="unfinished">パスワードが違います。</translation>
    </message>
    <message id="parley-la-error_no_answer">
        <source>There is no answer. Try again later.</source>
        <translation type="unfinished">応答がありません。後でもう一度お試しください。</translation>
    </message>
    <message id="parley-la-error_cancelled">
        <source>This was cancelled.</source>
        <translation type="unfinished">キャンセルされました。</translation>
    </message>
    <message id="parley-la-error_no_service">
        <source>The phone service is not running.</source>
        <translation type="unfinished">電話サービスが動作していません。</translation>
    </message>
    <message id="parley-la-error_no_call">
        <source>This has already ended.</source>
        <translation type="unfinished">これはすでに終了しています。</translation>
    </message>
    <message id="parley-la-error_failed">
        <source>This has failed.</source>
        <translation type="unfinished">失敗しました。</translation>
    </message>
</context>
</TS>
