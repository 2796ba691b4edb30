<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>ComboBox</name>
    <message>
        <source>Not in the list</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DateEdit</name>
    <message>
        <source>Дата в формате: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FieldMark</name>
    <message>
        <source>%1, required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Changed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not valid: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FormRules</name>
    <message>
        <source>&apos;%1&apos; is no number, or could be two; enter it again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no date; enter it as %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no choice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not zero</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check this box</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose one</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fill this in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is not what was set; enter it again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This could not be checked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 field needs attention</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n fields need attention</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Between %1 and %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In steps of %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>One of: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not in the form that is expected</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FtpJobs</name>
    <message>
        <source>it is a folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Of %1 only %2 of %3 bytes came.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 has %2 of %3 bytes at the server.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: another job fetches it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Something went wrong in the program: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The host %1 is not known.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 did not answer in time.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot connect to %1: %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection to %1 was lost: %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 refused the logon: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 takes no logon now: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not logged on to %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 closed the connection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 closed the connection. %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server refused %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not now, %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the server did not say why</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NumberEditor</name>
    <message>
        <source>&apos;%1&apos; is no number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Digits stand after the decimal point: delete them first</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zeros in front were left out: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Digits in front of the point: %1 at most</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Digits after the point: %1 at most</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A number has one decimal point</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A sign stands in front</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No negative numbers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>More digits than an amount can have</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Whole numbers only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>That is too long for this field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no number to take over</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A blank groups digits here; the decimal point is &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; groups digits here; the decimal point is &apos;%2&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A blank does not belong there in a number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; does not belong there in a number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; may be %2 or %3</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SelectorBox</name>
    <message>
        <source>%1 is not in the list yet</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
