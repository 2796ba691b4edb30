<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ar" sourcelanguage="en">
<context>
    <name>ComboBox</name>
    <message>
        <source>Not in the list</source>
        <translation>ليس في القائمة</translation>
    </message>
</context>
<context>
    <name>DateEdit</name>
    <message>
        <source>Дата в формате: %1</source>
        <translation>التاريخ بالصيغة: %1</translation>
    </message>
</context>
<context>
    <name>FieldMark</name>
    <message>
        <source>%1, required</source>
        <translation>%1، مطلوب</translation>
    </message>
    <message>
        <source>Changed</source>
        <translation>تم تغييره</translation>
    </message>
    <message>
        <source>Not valid: %1</source>
        <translation>غير صالح: %1</translation>
    </message>
</context>
<context>
    <name>FormRules</name>
    <message>
        <source>&apos;%1&apos; is no number, or could be two; enter it again</source>
        <translation>«%1» ليس رقمًا أو قد يعني رقمين؛ أدخله من جديد</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no date; enter it as %2</source>
        <translation>«%1» ليس تاريخًا؛ أدخله بالصيغة %2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no choice</source>
        <translation>«%1» ليس من الخيارات</translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation>لا يقل عن %1</translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation>لا يزيد على %1</translation>
    </message>
    <message>
        <source>Not zero</source>
        <translation>لا يكون صفرًا</translation>
    </message>
    <message>
        <source>Check this box</source>
        <translation>ضع علامة في هذا المربع</translation>
    </message>
    <message>
        <source>Choose one</source>
        <translation>اختر واحدًا</translation>
    </message>
    <message>
        <source>Fill this in</source>
        <translation>املأ هذا الحقل</translation>
    </message>
    <message>
        <source>This is not what was set; enter it again</source>
        <translation>هذا ليس ما تم ضبطه؛ أدخله من جديد</translation>
    </message>
    <message>
        <source>This could not be checked</source>
        <translation>تعذر التحقق من هذا</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>1 field needs attention</source>
        <translation>حقل واحد يحتاج إلى مراجعة</translation>
    </message>
    <message numerus="yes">
        <source>%n fields need attention</source>
        <translation>
            <numerusform>لا حقول تحتاج إلى مراجعة</numerusform>
            <numerusform>حقل واحد يحتاج إلى مراجعة</numerusform>
            <numerusform>حقلان يحتاجان إلى مراجعة</numerusform>
            <numerusform>%n حقول تحتاج إلى مراجعة</numerusform>
            <numerusform>%n حقلًا يحتاج إلى مراجعة</numerusform>
            <numerusform>%n حقل يحتاج إلى مراجعة</numerusform>
        </translation>
    </message>
    <message>
        <source>Between %1 and %2</source>
        <translation>بين %1 و%2</translation>
    </message>
    <message>
        <source>In steps of %1</source>
        <translation>بخطوات قدرها %1</translation>
    </message>
    <message>
        <source>One of: %1</source>
        <translation>واحد من: %1</translation>
    </message>
    <message>
        <source>Not in the form that is expected</source>
        <translation>ليس بالصيغة المتوقعة</translation>
    </message>
</context>
<context>
    <name>FtpJobs</name>
    <message>
        <source>it is a folder</source>
        <translation>إنه مجلد</translation>
    </message>
    <message>
        <source>Of %1 only %2 of %3 bytes came.</source>
        <translation>وصل من %1 فقط %2 من %3 بايت.</translation>
    </message>
    <message>
        <source>%1 has %2 of %3 bytes at the server.</source>
        <translation>لدى %1 على الخادم %2 من %3 بايت.</translation>
    </message>
    <message>
        <source>%1: another job fetches it</source>
        <translation>%1: مهمة أخرى تجلبه</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>أُلغي.</translation>
    </message>
    <message>
        <source>Something went wrong in the program: %1</source>
        <translation>حدث خطأ في البرنامج: %1</translation>
    </message>
    <message>
        <source>The host %1 is not known.</source>
        <translation>المضيف %1 غير معروف.</translation>
    </message>
    <message>
        <source>%1 did not answer in time.</source>
        <translation>لم يرد %1 في الوقت المحدد.</translation>
    </message>
    <message>
        <source>Cannot connect to %1: %2.</source>
        <translation>تعذر الاتصال بـ %1: %2.</translation>
    </message>
    <message>
        <source>The connection to %1 was lost: %2.</source>
        <translation>انقطع الاتصال بـ %1: %2.</translation>
    </message>
    <message>
        <source>%1 refused the logon: %2</source>
        <translation>رفض %1 تسجيل الدخول: %2</translation>
    </message>
    <message>
        <source>%1 takes no logon now: %2</source>
        <translation>لا يقبل %1 تسجيل الدخول الآن: %2</translation>
    </message>
    <message>
        <source>Not logged on to %1: %2</source>
        <translation>لم يتم تسجيل الدخول إلى %1: %2</translation>
    </message>
    <message>
        <source>%1 closed the connection.</source>
        <translation>أغلق %1 الاتصال.</translation>
    </message>
    <message>
        <source>%1 closed the connection. %2</source>
        <translation>أغلق %1 الاتصال. %2</translation>
    </message>
    <message>
        <source>The server refused %1: %2</source>
        <translation>رفض الخادم %1: %2</translation>
    </message>
    <message>
        <source>Not now, %1: %2</source>
        <translation>ليس الآن، %1: %2</translation>
    </message>
    <message>
        <source>the server did not say why</source>
        <translation>لم يذكر الخادم السبب</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>NumberEditor</name>
    <message>
        <source>&apos;%1&apos; is no number</source>
        <translation>«%1» ليس رقمًا</translation>
    </message>
    <message>
        <source>Digits stand after the decimal point: delete them first</source>
        <translation>توجد أرقام بعد الفاصلة العشرية: احذفها أولًا</translation>
    </message>
    <message>
        <source>Zeros in front were left out: %1</source>
        <translation>حُذفت الأصفار في البداية: %1</translation>
    </message>
    <message>
        <source>Digits in front of the point: %1 at most</source>
        <translation>الأرقام قبل الفاصلة: %1 على الأكثر</translation>
    </message>
    <message>
        <source>Digits after the point: %1 at most</source>
        <translation>الأرقام بعد الفاصلة: %1 على الأكثر</translation>
    </message>
    <message>
        <source>A number has one decimal point</source>
        <translation>للرقم فاصلة عشرية واحدة</translation>
    </message>
    <message>
        <source>A sign stands in front</source>
        <translation>الإشارة تكون في البداية</translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation>لا يقل عن %1</translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation>لا يزيد على %1</translation>
    </message>
    <message>
        <source>No negative numbers</source>
        <translation>لا أرقام سالبة</translation>
    </message>
    <message>
        <source>More digits than an amount can have</source>
        <translation>أرقام أكثر مما يمكن أن يحويه مبلغ</translation>
    </message>
    <message>
        <source>Whole numbers only</source>
        <translation>أعداد صحيحة فقط</translation>
    </message>
    <message>
        <source>That is too long for this field</source>
        <translation>هذا أطول مما يسعه الحقل</translation>
    </message>
    <message>
        <source>There is no number to take over</source>
        <translation>لا يوجد رقم لأخذه</translation>
    </message>
    <message>
        <source>A blank groups digits here; the decimal point is &apos;%1&apos;</source>
        <translation>المسافة تفصل هنا بين مجموعات الأرقام؛ العلامة العشرية هي «%1»</translation>
    </message>
    <message>
        <source>&apos;%1&apos; groups digits here; the decimal point is &apos;%2&apos;</source>
        <translation>«%1» تفصل هنا بين مجموعات الأرقام؛ العلامة العشرية هي «%2»</translation>
    </message>
    <message>
        <source>A blank does not belong there in a number</source>
        <translation>لا مكان لمسافة هنا في الرقم</translation>
    </message>
    <message>
        <source>&apos;%1&apos; does not belong there in a number</source>
        <translation>لا مكان لـ «%1» هنا في الرقم</translation>
    </message>
    <message>
        <source>&apos;%1&apos; may be %2 or %3</source>
        <translation>«%1» قد يكون %2 أو %3</translation>
    </message>
</context>
<context>
    <name>SelectorBox</name>
    <message>
        <source>%1 is not in the list yet</source>
        <translation>%1 ليس في القائمة بعد</translation>
    </message>
</context>
</TS>
