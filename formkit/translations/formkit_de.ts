<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>ComboBox</name>
    <message>
        <source>Not in the list</source>
        <translation>Nicht in der Liste</translation>
    </message>
</context>
<context>
    <name>DateEdit</name>
    <message>
        <source>Дата в формате: %1</source>
        <translation>Datum im Format: %1</translation>
    </message>
</context>
<context>
    <name>FieldMark</name>
    <message>
        <source>%1, required</source>
        <translation>%1, Pflichtfeld</translation>
    </message>
    <message>
        <source>Changed</source>
        <translation>Geändert</translation>
    </message>
    <message>
        <source>Not valid: %1</source>
        <translation>Nicht gültig: %1</translation>
    </message>
</context>
<context>
    <name>FormRules</name>
    <message>
        <source>&apos;%1&apos; is no number, or could be two; enter it again</source>
        <translation>„%1“ ist keine Zahl oder könnte zwei bedeuten; bitte neu eingeben</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no date; enter it as %2</source>
        <translation>„%1“ ist kein Datum; bitte als %2 eingeben</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no choice</source>
        <translation>„%1“ steht nicht zur Wahl</translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation>Mindestens %1</translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation>Höchstens %1</translation>
    </message>
    <message>
        <source>Not zero</source>
        <translation>Nicht null</translation>
    </message>
    <message>
        <source>Check this box</source>
        <translation>Bitte ankreuzen</translation>
    </message>
    <message>
        <source>Choose one</source>
        <translation>Bitte auswählen</translation>
    </message>
    <message>
        <source>Fill this in</source>
        <translation>Bitte ausfüllen</translation>
    </message>
    <message>
        <source>This is not what was set; enter it again</source>
        <translation>Das ist nicht, was gesetzt wurde; bitte neu eingeben</translation>
    </message>
    <message>
        <source>This could not be checked</source>
        <translation>Das ließ sich nicht prüfen</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>1 field needs attention</source>
        <translation>1 Feld ist zu prüfen</translation>
    </message>
    <message numerus="yes">
        <source>%n fields need attention</source>
        <translation>
            <numerusform>%n Feld ist zu prüfen</numerusform>
            <numerusform>%n Felder sind zu prüfen</numerusform>
        </translation>
    </message>
    <message>
        <source>Between %1 and %2</source>
        <translation>Zwischen %1 und %2</translation>
    </message>
    <message>
        <source>In steps of %1</source>
        <translation>In Schritten von %1</translation>
    </message>
    <message>
        <source>One of: %1</source>
        <translation>Eines von: %1</translation>
    </message>
    <message>
        <source>Not in the form that is expected</source>
        <translation>Nicht in der erwarteten Form</translation>
    </message>
</context>
<context>
    <name>FtpJobs</name>
    <message>
        <source>it is a folder</source>
        <translation>es ist ein Ordner</translation>
    </message>
    <message>
        <source>Of %1 only %2 of %3 bytes came.</source>
        <translation>Von %1 kamen nur %2 von %3 Bytes an.</translation>
    </message>
    <message>
        <source>%1 has %2 of %3 bytes at the server.</source>
        <translation>%1 hat auf dem Server %2 von %3 Bytes.</translation>
    </message>
    <message>
        <source>%1: another job fetches it</source>
        <translation>%1: ein anderer Auftrag holt diese Datei schon</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>Something went wrong in the program: %1</source>
        <translation>Im Programm ist etwas schiefgegangen: %1</translation>
    </message>
    <message>
        <source>The host %1 is not known.</source>
        <translation>Der Rechner %1 ist nicht bekannt.</translation>
    </message>
    <message>
        <source>%1 did not answer in time.</source>
        <translation>%1 hat nicht rechtzeitig geantwortet.</translation>
    </message>
    <message>
        <source>Cannot connect to %1: %2.</source>
        <translation>Keine Verbindung zu %1: %2.</translation>
    </message>
    <message>
        <source>The connection to %1 was lost: %2.</source>
        <translation>Die Verbindung zu %1 ging verloren: %2.</translation>
    </message>
    <message>
        <source>%1 refused the logon: %2</source>
        <translation>%1 hat die Anmeldung abgelehnt: %2</translation>
    </message>
    <message>
        <source>%1 takes no logon now: %2</source>
        <translation>%1 nimmt jetzt keine Anmeldung an: %2</translation>
    </message>
    <message>
        <source>Not logged on to %1: %2</source>
        <translation>Nicht an %1 angemeldet: %2</translation>
    </message>
    <message>
        <source>%1 closed the connection.</source>
        <translation>%1 hat die Verbindung beendet.</translation>
    </message>
    <message>
        <source>%1 closed the connection. %2</source>
        <translation>%1 hat die Verbindung beendet. %2</translation>
    </message>
    <message>
        <source>The server refused %1: %2</source>
        <translation>Der Server hat %1 abgelehnt: %2</translation>
    </message>
    <message>
        <source>Not now, %1: %2</source>
        <translation>Jetzt nicht, %1: %2</translation>
    </message>
    <message>
        <source>the server did not say why</source>
        <translation>der Server nannte keinen Grund</translation>
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
        <translation>„%1“ ist keine Zahl</translation>
    </message>
    <message>
        <source>Digits stand after the decimal point: delete them first</source>
        <translation>Nach dem Komma stehen Ziffern: zuerst diese löschen</translation>
    </message>
    <message>
        <source>Zeros in front were left out: %1</source>
        <translation>Führende Nullen wurden weggelassen: %1</translation>
    </message>
    <message>
        <source>Digits in front of the point: %1 at most</source>
        <translation>Ziffern vor dem Komma: höchstens %1</translation>
    </message>
    <message>
        <source>Digits after the point: %1 at most</source>
        <translation>Ziffern nach dem Komma: höchstens %1</translation>
    </message>
    <message>
        <source>A number has one decimal point</source>
        <translation>Eine Zahl hat ein Dezimalzeichen</translation>
    </message>
    <message>
        <source>A sign stands in front</source>
        <translation>Ein Vorzeichen steht vorn</translation>
    </message>
    <message>
        <source>At least %1</source>
        <translation>Mindestens %1</translation>
    </message>
    <message>
        <source>At most %1</source>
        <translation>Höchstens %1</translation>
    </message>
    <message>
        <source>No negative numbers</source>
        <translation>Keine negativen Zahlen</translation>
    </message>
    <message>
        <source>More digits than an amount can have</source>
        <translation>Mehr Ziffern, als ein Betrag haben kann</translation>
    </message>
    <message>
        <source>Whole numbers only</source>
        <translation>Nur ganze Zahlen</translation>
    </message>
    <message>
        <source>That is too long for this field</source>
        <translation>Das ist zu lang für dieses Feld</translation>
    </message>
    <message>
        <source>There is no number to take over</source>
        <translation>Es gibt keine Zahl zu übernehmen</translation>
    </message>
    <message>
        <source>A blank groups digits here; the decimal point is &apos;%1&apos;</source>
        <translation>Ein Leerzeichen gruppiert hier Ziffern; das Dezimalzeichen ist „%1“</translation>
    </message>
    <message>
        <source>&apos;%1&apos; groups digits here; the decimal point is &apos;%2&apos;</source>
        <translation>„%1“ gruppiert hier Ziffern; das Dezimalzeichen ist „%2“</translation>
    </message>
    <message>
        <source>A blank does not belong there in a number</source>
        <translation>Ein Leerzeichen gehört nicht dorthin</translation>
    </message>
    <message>
        <source>&apos;%1&apos; does not belong there in a number</source>
        <translation>„%1“ gehört in einer Zahl nicht dorthin</translation>
    </message>
    <message>
        <source>&apos;%1&apos; may be %2 or %3</source>
        <translation>„%1“ kann %2 oder %3 sein</translation>
    </message>
</context>
<context>
    <name>SelectorBox</name>
    <message>
        <source>%1 is not in the list yet</source>
        <translation>%1 ist noch nicht in der Liste</translation>
    </message>
</context>
</TS>
