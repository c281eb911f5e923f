<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ar" sourcelanguage="en">
<context>
    <name>BarredStrip</name>
    <message>
        <source>Emergency numbers can still be called</source>
        <translation type="unfinished">لا يزال من الممكن الاتصال بأرقام الطوارئ</translation>
    </message>
</context>
<context>
    <name>CallRows</name>
    <message>
        <source>Other calls</source>
        <translation type="unfinished">المكالمات الأخرى</translation>
    </message>
    <message>
        <source>Speak alone</source>
        <translation type="unfinished">التحدث على انفراد</translation>
    </message>
    <message>
        <source>On hold</source>
        <translation type="unfinished">قيد الانتظار</translation>
    </message>
    <message>
        <source>Active</source>
        <translation type="unfinished">نشطة</translation>
    </message>
</context>
<context>
    <name>CallScreen</name>
    <message>
        <source>via %1</source>
        <translation type="unfinished">عبر %1</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation type="unfinished">كتم</translation>
    </message>
    <message>
        <source>Keypad</source>
        <translation type="unfinished">لوحة المفاتيح</translation>
    </message>
    <message>
        <source>Speaker</source>
        <translation type="unfinished">مكبر الصوت</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation type="unfinished">ذكّرني</translation>
    </message>
    <message>
        <source>End call</source>
        <translation type="unfinished">إنهاء المكالمة</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation type="unfinished">استئناف</translation>
    </message>
    <message>
        <source>Swap</source>
        <translation type="unfinished">تبديل</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation type="unfinished">انتظار</translation>
    </message>
    <message>
        <source>Join</source>
        <translation type="unfinished">دمج</translation>
    </message>
    <message>
        <source>Add call</source>
        <translation type="unfinished">إضافة مكالمة</translation>
    </message>
</context>
<context>
    <name>ContactCard</name>
    <message>
        <source>Contact card of %1</source>
        <translation type="unfinished">بطاقة جهة الاتصال %1</translation>
    </message>
    <message>
        <source>Contact card</source>
        <translation type="unfinished">بطاقة جهة الاتصال</translation>
    </message>
    <message>
        <source>No number</source>
        <translation type="unfinished">لا يوجد رقم</translation>
    </message>
    <message>
        <source>Not in your contacts</source>
        <translation type="unfinished">ليس في جهات الاتصال</translation>
    </message>
    <message>
        <source>Call</source>
        <translation type="unfinished">اتصال</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation type="unfinished">ذكّرني</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">إغلاق</translation>
    </message>
    <message>
        <source>Missed call, %1</source>
        <translation type="unfinished">مكالمة فائتة، %1</translation>
    </message>
</context>
<context>
    <name>DialPad</name>
    <message>
        <source>Dial pad</source>
        <translation type="unfinished">لوحة الاتصال</translation>
    </message>
    <message>
        <source>Erase</source>
        <translation type="unfinished">مسح</translation>
    </message>
    <message>
        <source>Special sequence</source>
        <translation type="unfinished">رمز خاص</translation>
    </message>
    <message>
        <source>Reminders</source>
        <translation type="unfinished">التذكيرات</translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished">فتح</translation>
    </message>
    <message>
        <source>Call</source>
        <translation type="unfinished">اتصال</translation>
    </message>
    <message>
        <source>Replies</source>
        <translation type="unfinished">الردود</translation>
    </message>
</context>
<context>
    <name>ErrorDialog</name>
    <message>
        <source>Cellular network unavailable</source>
        <translation type="unfinished">شبكة الهاتف المحمول غير متاحة</translation>
    </message>
    <message>
        <source>Calls cannot be made now. Check the SIM card and the network settings, and try again.</source>
        <translation type="unfinished">لا يمكن إجراء المكالمات الآن. تحقق من بطاقة SIM وإعدادات الشبكة، ثم حاول مرة أخرى.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished">موافق</translation>
    </message>
</context>
<context>
    <name>IncomingScreen</name>
    <message>
        <source>Incoming call from %1</source>
        <translation type="unfinished">مكالمة واردة من %1</translation>
    </message>
    <message>
        <source>Incoming call</source>
        <translation type="unfinished">مكالمة واردة</translation>
    </message>
    <message>
        <source>Answering ends the call with %1</source>
        <translation type="unfinished">الرد ينهي المكالمة مع %1</translation>
    </message>
    <message>
        <source>Reply instead</source>
        <translation type="unfinished">الرد برسالة</translation>
    </message>
    <message>
        <source>There are no quick replies</source>
        <translation type="unfinished">لا توجد ردود سريعة</translation>
    </message>
    <message>
        <source>Quick replies</source>
        <translation type="unfinished">الردود السريعة</translation>
    </message>
    <message>
        <source>Decline</source>
        <translation type="unfinished">رفض</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation type="unfinished">ذكّرني</translation>
    </message>
    <message>
        <source>Replies</source>
        <translation type="unfinished">الردود</translation>
    </message>
    <message>
        <source>Answer</source>
        <translation type="unfinished">رد</translation>
    </message>
    <message>
        <source>Waiting call</source>
        <translation type="unfinished">مكالمة منتظرة</translation>
    </message>
    <message>
        <source>Answering holds the call with %1</source>
        <translation type="unfinished">سيضع الرد المكالمة مع %1 قيد الانتظار</translation>
    </message>
    <message>
        <source>End the other</source>
        <translation type="unfinished">إنهاء الأخرى</translation>
    </message>
    <message>
        <source>End the other call and answer</source>
        <translation type="unfinished">إنهاء المكالمة الأخرى والرد</translation>
    </message>
</context>
<context>
    <name>Line</name>
    <message>
        <source>The telephony does not answer</source>
        <translation type="unfinished">خدمة الهاتف لا تستجيب</translation>
    </message>
    <message>
        <source>The telephony does not run</source>
        <translation type="unfinished">خدمة الهاتف لا تعمل</translation>
    </message>
    <message>
        <source>This phone has no telephony</source>
        <translation type="unfinished">لا توجد خدمة هاتف في هذا الجهاز</translation>
    </message>
    <message>
        <source>Conference</source>
        <translation type="unfinished">مكالمة جماعية</translation>
    </message>
    <message>
        <source>On hold by the other side</source>
        <translation type="unfinished">وضعك الطرف الآخر قيد الانتظار</translation>
    </message>
    <message>
        <source>On hold</source>
        <translation type="unfinished">قيد الانتظار</translation>
    </message>
    <message>
        <source>Ringing…</source>
        <translation type="unfinished">يرن…</translation>
    </message>
    <message>
        <source>Calling…</source>
        <translation type="unfinished">جارٍ الاتصال…</translation>
    </message>
</context>
<context>
    <name>NetworkDialog</name>
    <message>
        <source>Asking the network…</source>
        <translation type="unfinished">جارٍ سؤال الشبكة…</translation>
    </message>
    <message>
        <source>The network says</source>
        <translation type="unfinished">رسالة من الشبكة</translation>
    </message>
    <message>
        <source>Done</source>
        <translation type="unfinished">تم</translation>
    </message>
    <message>
        <source>Reply to the network</source>
        <translation type="unfinished">الرد على الشبكة</translation>
    </message>
    <message>
        <source>Send</source>
        <translation type="unfinished">إرسال</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">إغلاق</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished">إلغاء</translation>
    </message>
</context>
<context>
    <name>PadKey</name>
    <message>
        <source>Star</source>
        <translation type="unfinished">نجمة</translation>
    </message>
    <message>
        <source>Hash</source>
        <translation type="unfinished">مربع</translation>
    </message>
</context>
<context>
    <name>PageScreen</name>
    <message>
        <source>Open pages</source>
        <translation type="unfinished">فتح الصفحات</translation>
    </message>
    <message>
        <source>Open page</source>
        <translation type="unfinished">فتح الصفحة</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation type="unfinished">
            <numerusform>ولا صفحات أخرى</numerusform>
            <numerusform>وصفحة أخرى</numerusform>
            <numerusform>وصفحتان أخريان</numerusform>
            <numerusform>و%n صفحات أخرى</numerusform>
            <numerusform>و%n صفحة أخرى</numerusform>
            <numerusform>و%n صفحة أخرى</numerusform>
        </translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">إغلاق</translation>
    </message>
</context>
<context>
    <name>Phone</name>
    <message>
        <source>Phone</source>
        <translation type="unfinished">الهاتف</translation>
    </message>
    <message>
        <source>Call back %1</source>
        <translation type="unfinished">معاودة الاتصال بـ %1</translation>
    </message>
    <message>
        <source>ddd d MMM yyyy, hh:mm</source>
        <comment>date</comment>
        <translation type="unfinished">ddd d MMM yyyy، hh:mm</translation>
    </message>
    <message>
        <source>Replied to %1</source>
        <translation type="unfinished">تم الرد على %1</translation>
    </message>
    <message>
        <source>No reply to send</source>
        <translation type="unfinished">لا يوجد رد لإرساله</translation>
    </message>
    <message>
        <source>Nothing is set for this sequence</source>
        <translation type="unfinished">لم يتم تعيين شيء لهذا الرمز</translation>
    </message>
    <message>
        <source>%1 is not on this phone</source>
        <translation type="unfinished">%1 غير موجود على هذا الهاتف</translation>
    </message>
    <message>
        <source>No ongoing call</source>
        <translation type="unfinished">لا توجد مكالمة جارية</translation>
    </message>
    <message>
        <source>No call to answer or end</source>
        <translation type="unfinished">لا توجد مكالمة للرد عليها أو إنهائها</translation>
    </message>
    <message>
        <source>Declined %1</source>
        <translation type="unfinished">تم رفض %1</translation>
    </message>
    <message>
        <source>Replying to %1…</source>
        <translation type="unfinished">جارٍ الرد على %1…</translation>
    </message>
    <message>
        <source>The call with %1 has ended</source>
        <translation type="unfinished">انتهت المكالمة مع %1</translation>
    </message>
    <message>
        <source>%1 did not take the call</source>
        <translation type="unfinished">لم يرد %1 على المكالمة</translation>
    </message>
    <message>
        <source>Missed call from %1</source>
        <translation type="unfinished">مكالمة فائتة من %1</translation>
    </message>
    <message>
        <source>The reply to %1 could not be sent</source>
        <translation type="unfinished">تعذر إرسال الرد إلى %1</translation>
    </message>
</context>
<context>
    <name>QuickReplies</name>
    <message>
        <source>Quick replies</source>
        <translation type="unfinished">الردود السريعة</translation>
    </message>
    <message>
        <source>The file of the replies cannot be opened</source>
        <translation type="unfinished">تعذر فتح ملف الردود</translation>
    </message>
    <message>
        <source>1 reply</source>
        <translation type="unfinished">رد واحد</translation>
    </message>
    <message numerus="yes">
        <source>%n replies</source>
        <translation type="unfinished">
            <numerusform>لا توجد ردود</numerusform>
            <numerusform>رد واحد</numerusform>
            <numerusform>ردان</numerusform>
            <numerusform>%n ردود</numerusform>
            <numerusform>%n ردًا</numerusform>
            <numerusform>%n رد</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, not saved yet</source>
        <translation type="unfinished">%1، لم يتم الحفظ بعد</translation>
    </message>
    <message>
        <source>Add a reply</source>
        <translation type="unfinished">إضافة رد</translation>
    </message>
    <message>
        <source>New reply</source>
        <translation type="unfinished">رد جديد</translation>
    </message>
    <message>
        <source>Add</source>
        <translation type="unfinished">إضافة</translation>
    </message>
    <message>
        <source>Defaults</source>
        <translation type="unfinished">الافتراضي</translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished">حفظ</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">إغلاق</translation>
    </message>
</context>
<context>
    <name>RemindSheet</name>
    <message>
        <source>Remind me to call back</source>
        <translation type="unfinished">ذكّرني بمعاودة الاتصال</translation>
    </message>
    <message>
        <source>Remove reminder</source>
        <translation type="unfinished">إزالة التذكير</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">إغلاق</translation>
    </message>
</context>
<context>
    <name>ReminderList</name>
    <message>
        <source>Reminders</source>
        <translation type="unfinished">التذكيرات</translation>
    </message>
    <message>
        <source>There is nobody to call back</source>
        <translation type="unfinished">لا يوجد من تعاود الاتصال به</translation>
    </message>
    <message>
        <source>1 number to call back</source>
        <translation type="unfinished">رقم واحد لمعاودة الاتصال به</translation>
    </message>
    <message numerus="yes">
        <source>%n numbers to call back</source>
        <translation type="unfinished">
            <numerusform>لا توجد أرقام لمعاودة الاتصال بها</numerusform>
            <numerusform>رقم واحد لمعاودة الاتصال به</numerusform>
            <numerusform>رقمان لمعاودة الاتصال بهما</numerusform>
            <numerusform>%n أرقام لمعاودة الاتصال بها</numerusform>
            <numerusform>%n رقمًا لمعاودة الاتصال بها</numerusform>
            <numerusform>%n رقم لمعاودة الاتصال بها</numerusform>
        </translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">إغلاق</translation>
    </message>
</context>
<context>
    <name>ReminderRow</name>
    <message>
        <source>Remove the reminder for %1</source>
        <translation type="unfinished">إزالة التذكير الخاص بـ %1</translation>
    </message>
</context>
<context>
    <name>ReplyRow</name>
    <message>
        <source>Reply %1</source>
        <translation type="unfinished">الرد %1</translation>
    </message>
    <message>
        <source>Empty: it is not saved</source>
        <translation type="unfinished">فارغ: لن يتم حفظه</translation>
    </message>
    <message>
        <source>Remove reply %1</source>
        <translation type="unfinished">إزالة الرد %1</translation>
    </message>
</context>
<context>
    <name>SimChoice</name>
    <message>
        <source>Call %1 with</source>
        <translation type="unfinished">الاتصال بـ %1 عبر</translation>
    </message>
    <message>
        <source>SIM %1</source>
        <translation type="unfinished">شريحة %1</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished">إلغاء</translation>
    </message>
</context>
<context>
    <name>Sims</name>
    <message>
        <source>Calls to this phone are barred by its management</source>
        <translation type="unfinished">المكالمات إلى هذا الهاتف محظورة من قِبل إدارته</translation>
    </message>
    <message>
        <source>Calls from this phone are barred by its management</source>
        <translation type="unfinished">المكالمات من هذا الهاتف محظورة من قِبل إدارته</translation>
    </message>
    <message>
        <source>All calls of this phone are barred by its management</source>
        <translation type="unfinished">جميع مكالمات هذا الهاتف محظورة من قِبل إدارته</translation>
    </message>
</context>
<context>
    <name>Stage</name>
    <message>
        <source>Incoming call</source>
        <translation type="unfinished">مكالمة واردة</translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message>
        <source>Call in progress</source>
        <translation type="unfinished">مكالمة جارية</translation>
    </message>
    <message>
        <source>No telephony answers</source>
        <translation type="unfinished">خدمة الهاتف لا تستجيب</translation>
    </message>
    <message>
        <source>Checking SIMs…</source>
        <translation type="unfinished">جارٍ فحص بطاقات SIM…</translation>
    </message>
    <message>
        <source>No SIM</source>
        <translation type="unfinished">لا توجد بطاقة SIM</translation>
    </message>
    <message>
        <source>1 SIM</source>
        <translation type="unfinished">بطاقة SIM واحدة</translation>
    </message>
    <message numerus="yes">
        <source>%n SIMs</source>
        <translation type="unfinished">
            <numerusform>لا توجد بطاقات SIM</numerusform>
            <numerusform>بطاقة SIM واحدة</numerusform>
            <numerusform>بطاقتا SIM</numerusform>
            <numerusform>%n بطاقات SIM</numerusform>
            <numerusform>%n بطاقة SIM</numerusform>
            <numerusform>%n بطاقة SIM</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>text</name>
    <message>
        <source>In 1 minute</source>
        <translation type="unfinished">بعد دقيقة واحدة</translation>
    </message>
    <message>
        <source>In 30 minutes</source>
        <translation type="unfinished">بعد 30 دقيقة</translation>
    </message>
    <message>
        <source>In 1 hour</source>
        <translation type="unfinished">بعد ساعة واحدة</translation>
    </message>
    <message>
        <source>This evening</source>
        <translation type="unfinished">هذا المساء</translation>
    </message>
    <message>
        <source>Tomorrow morning</source>
        <translation type="unfinished">صباح الغد</translation>
    </message>
    <message>
        <source>today %1</source>
        <translation type="unfinished">اليوم %1</translation>
    </message>
    <message>
        <source>tomorrow %1</source>
        <translation type="unfinished">غدًا %1</translation>
    </message>
    <message>
        <source>ddd d MMM</source>
        <comment>date</comment>
        <translation type="unfinished">ddd d MMM</translation>
    </message>
    <message>
        <source>ddd d MMM yyyy</source>
        <comment>date</comment>
        <translation type="unfinished">ddd d MMM yyyy</translation>
    </message>
    <message>
        <source>now</source>
        <translation type="unfinished">الآن</translation>
    </message>
    <message numerus="yes">
        <source>in %n min</source>
        <translation type="unfinished">
            <numerusform>الآن</numerusform>
            <numerusform>بعد دقيقة واحدة</numerusform>
            <numerusform>بعد دقيقتين</numerusform>
            <numerusform>بعد %n دقائق</numerusform>
            <numerusform>بعد %n دقيقة</numerusform>
            <numerusform>بعد %n دقيقة</numerusform>
        </translation>
    </message>
    <message>
        <source>in %1 h %2 min</source>
        <translation type="unfinished">بعد %1 س %2 د</translation>
    </message>
    <message numerus="yes">
        <source>in %n days</source>
        <translation type="unfinished">
            <numerusform>اليوم</numerusform>
            <numerusform>بعد يوم واحد</numerusform>
            <numerusform>بعد يومين</numerusform>
            <numerusform>بعد %n أيام</numerusform>
            <numerusform>بعد %n يومًا</numerusform>
            <numerusform>بعد %n يوم</numerusform>
        </translation>
    </message>
    <message>
        <source>Private number</source>
        <translation type="unfinished">رقم خاص</translation>
    </message>
</context>
</TS>
