<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name></name>
    <message id="parley-ap-name">
        <source>Phone</source>
        <extracomment>The name of the program.</extracomment>
        <translation type="unfinished">电话</translation>
    </message>
    <message id="parley-me-please_call_later">
        <source>Please call later</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">请稍后再打给我</translation>
    </message>
    <message id="parley-me-cant_talk_at_the_moment">
        <source>I can&apos;t talk at the moment</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">我现在不方便通话</translation>
    </message>
    <message id="parley-me-will_call_back">
        <source>I will call back</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">我会回电</translation>
    </message>
    <message id="parley-he-reminder">
        <source>Reminder</source>
        <extracomment>The title of a notification that it is time to call somebody without a name and a number.</extracomment>
        <translation type="unfinished">提醒</translation>
    </message>
    <message id="parley-bt-call">
        <source>Call</source>
        <extracomment>A button of a notification: calls the person.</extracomment>
        <translation type="unfinished">拨打</translation>
    </message>
    <message id="parley-bt-in_10_minutes">
        <source>In 10 minutes</source>
        <extracomment>A button of a notification: shows it again in 10 minutes.</extracomment>
        <translation type="unfinished">10 分钟后</translation>
    </message>
    <message id="parley-la-due_since">
        <source>Due since %1</source>
        <extracomment>%1 is a time, or a date and a time if that was on another day.</extracomment>
        <translation type="unfinished">自 %1 起已到期</translation>
    </message>
    <message id="parley-la-error_invalid_number">
        <source>This number or text cannot be used.</source>
        <translation type="unfinished">无法使用此号码或文本。</translation>
    </message>
    <message id="parley-la-error_busy">
        <source>The phone is busy. Try again in a moment.</source>
        <translation type="unfinished">电话正忙，请稍后重试。</translation>
    </message>
    <message id="parley-la-error_not_supported">
        <source>This phone or its network does not support this.</source>
        <translation type="unfinished">此手机或其网络不支持该功能。</translation>
    </message>
    <message id="parley-la-error_no_network">
        <source>There is no connection to the mobile network.</source>
        <translation type="unfinished">未连接到移动网络。</translation>
    </message>
    <message id="parley-la-error_not_allowed">
        <source>This is not allowed.</source>
        <translation type="unfinished">不允许此操作。</translation>
    </message>
    <message id="parley-la-error_incorrect_password">
        <source>The password is wrong.</source>
        <translation type="unfinished">密码错误。</translation>
    </message>
    <message id="parley-la-error_no_answer">
        <source>There is no answer. Try again later.</source>
        <translation type="unfinished">没有响应，请稍后重试。</translation>
    </message>
    <message id="parley-la-error_cancelled">
        <source>This was cancelled.</source>
        <translation type="unfinished">已取消。</translation>
    </message>
    <message id="parley-la-error_no_service">
        <source>The phone service is not running.</source>
        <translation type="unfinished">电话服务未运行。</translation>
    </message>
    <message id="parley-la-error_no_call">
        <source>This has already ended.</source>
        <translation type="unfinished">这已经结束。</translation>
    </message>
    <message id="parley-la-error_failed">
        <source>This has failed.</source>
        <translation type="unfinished">操作失败。</translation>
    </message>
</context>
</TS>
