<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru" sourcelanguage="en">
<context>
    <name>ComboBox</name>
    <message>
        <source>Not in the list</source>
        <translation>Нет в списке</translation>
    </message>
</context>
<context>
    <name>DateEdit</name>
    <message>
        <source>Дата в формате: %1</source>
        <translation>Дата в формате: %1</translation>
    </message>
</context>
<context>
    <name>FieldMark</name>
    <message>
        <source>%1, required</source>
        <translation>%1, обязательно</translation>
    </message>
    <message>
        <source>Changed</source>
        <translation>Изменено</translation>
    </message>
    <message>
        <source>Not valid: %1</source>
        <translation>Неверно: %1</translation>
    </message>
</context>
<context>
    <name>FormRules</name>
    <message>
        <source>&apos;%1&apos; is no number, or could be two; enter it again</source>
        <translation>«%1» — не число или может означать два; введите ещё раз</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no date; enter it as %2</source>
        <translation>«%1» — не дата; введите в виде %2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no choice</source>
        <translation>«%1» нет среди вариантов</translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation>Не меньше %1</translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation>Не больше %1</translation>
    </message>
    <message>
        <source>Not zero</source>
        <translation>Не ноль</translation>
    </message>
    <message>
        <source>Check this box</source>
        <translation>Поставьте отметку</translation>
    </message>
    <message>
        <source>Choose one</source>
        <translation>Выберите</translation>
    </message>
    <message>
        <source>Fill this in</source>
        <translation>Заполните</translation>
    </message>
    <message>
        <source>This is not what was set; enter it again</source>
        <translation>Это не то, что было задано; введите ещё раз</translation>
    </message>
    <message>
        <source>This could not be checked</source>
        <translation>Это не удалось проверить</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>1 field needs attention</source>
        <translation>1 поле требует внимания</translation>
    </message>
    <message numerus="yes">
        <source>%n fields need attention</source>
        <translation>
            <numerusform>%n поле требует внимания</numerusform>
            <numerusform>%n поля требуют внимания</numerusform>
            <numerusform>%n полей требуют внимания</numerusform>
        </translation>
    </message>
    <message>
        <source>Between %1 and %2</source>
        <translation>От %1 до %2</translation>
    </message>
    <message>
        <source>In steps of %1</source>
        <translation>С шагом %1</translation>
    </message>
    <message>
        <source>One of: %1</source>
        <translation>Одно из: %1</translation>
    </message>
    <message>
        <source>Not in the form that is expected</source>
        <translation>Не в том виде, который ожидается</translation>
    </message>
</context>
<context>
    <name>FtpJobs</name>
    <message>
        <source>it is a folder</source>
        <translation>это папка</translation>
    </message>
    <message>
        <source>Of %1 only %2 of %3 bytes came.</source>
        <translation>Из %1 получено только %2 из %3 байт.</translation>
    </message>
    <message>
        <source>%1 has %2 of %3 bytes at the server.</source>
        <translation>На сервере в %1 только %2 из %3 байт.</translation>
    </message>
    <message>
        <source>%1: another job fetches it</source>
        <translation>%1: файл уже получает другое задание</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Отменено.</translation>
    </message>
    <message>
        <source>Something went wrong in the program: %1</source>
        <translation>Ошибка в программе: %1</translation>
    </message>
    <message>
        <source>The host %1 is not known.</source>
        <translation>Узел %1 не найден.</translation>
    </message>
    <message>
        <source>%1 did not answer in time.</source>
        <translation>%1 не ответил вовремя.</translation>
    </message>
    <message>
        <source>Cannot connect to %1: %2.</source>
        <translation>Не удалось соединиться с %1: %2.</translation>
    </message>
    <message>
        <source>The connection to %1 was lost: %2.</source>
        <translation>Соединение с %1 потеряно: %2.</translation>
    </message>
    <message>
        <source>%1 refused the logon: %2</source>
        <translation>%1 отказал во входе: %2</translation>
    </message>
    <message>
        <source>%1 takes no logon now: %2</source>
        <translation>%1 сейчас не принимает вход: %2</translation>
    </message>
    <message>
        <source>Not logged on to %1: %2</source>
        <translation>Вход на %1 не выполнен: %2</translation>
    </message>
    <message>
        <source>%1 closed the connection.</source>
        <translation>%1 закрыл соединение.</translation>
    </message>
    <message>
        <source>%1 closed the connection. %2</source>
        <translation>%1 закрыл соединение. %2</translation>
    </message>
    <message>
        <source>The server refused %1: %2</source>
        <translation>Сервер отклонил %1: %2</translation>
    </message>
    <message>
        <source>Not now, %1: %2</source>
        <translation>Не сейчас, %1: %2</translation>
    </message>
    <message>
        <source>the server did not say why</source>
        <translation>сервер не сообщил причину</translation>
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
        <translation>«%1» — не число</translation>
    </message>
    <message>
        <source>Digits stand after the decimal point: delete them first</source>
        <translation>После запятой стоят цифры: сначала удалите их</translation>
    </message>
    <message>
        <source>Zeros in front were left out: %1</source>
        <translation>Нули впереди опущены: %1</translation>
    </message>
    <message>
        <source>Digits in front of the point: %1 at most</source>
        <translation>Цифр до запятой: не больше %1</translation>
    </message>
    <message>
        <source>Digits after the point: %1 at most</source>
        <translation>Цифр после запятой: не больше %1</translation>
    </message>
    <message>
        <source>A number has one decimal point</source>
        <translation>В числе одна десятичная запятая</translation>
    </message>
    <message>
        <source>A sign stands in front</source>
        <translation>Знак стоит впереди</translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation>Не меньше %1</translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation>Не больше %1</translation>
    </message>
    <message>
        <source>No negative numbers</source>
        <translation>Отрицательные числа недопустимы</translation>
    </message>
    <message>
        <source>More digits than an amount can have</source>
        <translation>Цифр больше, чем может быть в сумме</translation>
    </message>
    <message>
        <source>Whole numbers only</source>
        <translation>Только целые числа</translation>
    </message>
    <message>
        <source>That is too long for this field</source>
        <translation>Это слишком длинно для этого поля</translation>
    </message>
    <message>
        <source>There is no number to take over</source>
        <translation>Нет числа, которое можно вставить</translation>
    </message>
    <message>
        <source>A blank groups digits here; the decimal point is &apos;%1&apos;</source>
        <translation>Пробел здесь разделяет группы цифр; десятичный знак — «%1»</translation>
    </message>
    <message>
        <source>&apos;%1&apos; groups digits here; the decimal point is &apos;%2&apos;</source>
        <translation>«%1» здесь разделяет группы цифр; десятичный знак — «%2»</translation>
    </message>
    <message>
        <source>A blank does not belong there in a number</source>
        <translation>Пробелу в числе здесь не место</translation>
    </message>
    <message>
        <source>&apos;%1&apos; does not belong there in a number</source>
        <translation>«%1» в числе здесь не место</translation>
    </message>
    <message>
        <source>&apos;%1&apos; may be %2 or %3</source>
        <translation>«%1» может быть %2 или %3</translation>
    </message>
</context>
<context>
    <name>SelectorBox</name>
    <message>
        <source>%1 is not in the list yet</source>
        <translation>%1 пока нет в списке</translation>
    </message>
</context>
</TS>
