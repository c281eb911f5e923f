<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>BarredStrip</name>
    <message>
        <source>Emergency numbers can still be called</source>
        <translation type="unfinished">Notrufnummern können weiterhin angerufen werden</translation>
    </message>
</context>
<context>
    <name>CallRows</name>
    <message>
        <source>Other calls</source>
        <translation type="unfinished">Andere Anrufe</translation>
    </message>
    <message>
        <source>Speak alone</source>
        <translation type="unfinished">Allein sprechen</translation>
    </message>
    <message>
        <source>On hold</source>
        <translation type="unfinished">Gehalten</translation>
    </message>
    <message>
        <source>Active</source>
        <translation type="unfinished">Aktiv</translation>
    </message>
</context>
<context>
    <name>CallScreen</name>
    <message>
        <source>via %1</source>
        <translation type="unfinished">über %1</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation type="unfinished">Stumm</translation>
    </message>
    <message>
        <source>Keypad</source>
        <translation type="unfinished">Tasten</translation>
    </message>
    <message>
        <source>Speaker</source>
        <translation type="unfinished">Lautsprecher</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation type="unfinished">Erinnern</translation>
    </message>
    <message>
        <source>End call</source>
        <translation type="unfinished">Auflegen</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation type="unfinished">Fortsetzen</translation>
    </message>
    <message>
        <source>Swap</source>
        <translation type="unfinished">Wechseln</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation type="unfinished">Halten</translation>
    </message>
    <message>
        <source>Join</source>
        <translation type="unfinished">Verbinden</translation>
    </message>
    <message>
        <source>Add call</source>
        <translation type="unfinished">Neuer Anruf</translation>
    </message>
</context>
<context>
    <name>ContactCard</name>
    <message>
        <source>Contact card of %1</source>
        <translation type="unfinished">Kontaktkarte von %1</translation>
    </message>
    <message>
        <source>Contact card</source>
        <translation type="unfinished">Kontaktkarte</translation>
    </message>
    <message>
        <source>No number</source>
        <translation type="unfinished">Keine Nummer</translation>
    </message>
    <message>
        <source>Not in your contacts</source>
        <translation type="unfinished">Nicht in den Kontakten</translation>
    </message>
    <message>
        <source>Call</source>
        <translation type="unfinished">Anrufen</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation type="unfinished">Erinnern</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">Schließen</translation>
    </message>
    <message>
        <source>Missed call, %1</source>
        <translation type="unfinished">Verpasster Anruf, %1</translation>
    </message>
</context>
<context>
    <name>DialPad</name>
    <message>
        <source>Dial pad</source>
        <translation type="unfinished">Wähltastatur</translation>
    </message>
    <message>
        <source>Erase</source>
        <translation type="unfinished">Löschen</translation>
    </message>
    <message>
        <source>Special sequence</source>
        <translation type="unfinished">Sonderfolge</translation>
    </message>
    <message>
        <source>Reminders</source>
        <translation type="unfinished">Erinnerungen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished">Öffnen</translation>
    </message>
    <message>
        <source>Call</source>
        <translation type="unfinished">Anrufen</translation>
    </message>
    <message>
        <source>Replies</source>
        <translation type="unfinished">Antworten</translation>
    </message>
</context>
<context>
    <name>ErrorDialog</name>
    <message>
        <source>Cellular network unavailable</source>
        <translation type="unfinished">Mobilfunknetz nicht verfügbar</translation>
    </message>
    <message>
        <source>Calls cannot be made now. Check the SIM card and the network settings, and try again.</source>
        <translation type="unfinished">Anrufe sind zurzeit nicht möglich. Bitte die SIM-Karte und die Netzwerkeinstellungen prüfen und es noch einmal versuchen.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished">OK</translation>
    </message>
</context>
<context>
    <name>IncomingScreen</name>
    <message>
        <source>Incoming call from %1</source>
        <translation type="unfinished">Eingehender Anruf von %1</translation>
    </message>
    <message>
        <source>Incoming call</source>
        <translation type="unfinished">Eingehender Anruf</translation>
    </message>
    <message>
        <source>Answering ends the call with %1</source>
        <translation type="unfinished">Annehmen beendet den Anruf mit %1</translation>
    </message>
    <message>
        <source>Reply instead</source>
        <translation type="unfinished">Stattdessen antworten</translation>
    </message>
    <message>
        <source>There are no quick replies</source>
        <translation type="unfinished">Es gibt keine Schnellantworten</translation>
    </message>
    <message>
        <source>Quick replies</source>
        <translation type="unfinished">Schnellantworten</translation>
    </message>
    <message>
        <source>Decline</source>
        <translation type="unfinished">Ablehnen</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation type="unfinished">Erinnern</translation>
    </message>
    <message>
        <source>Replies</source>
        <translation type="unfinished">Antworten</translation>
    </message>
    <message>
        <source>Answer</source>
        <translation type="unfinished">Annehmen</translation>
    </message>
    <message>
        <source>Waiting call</source>
        <translation type="unfinished">Wartender Anruf</translation>
    </message>
    <message>
        <source>Answering holds the call with %1</source>
        <translation type="unfinished">Annehmen hält den Anruf mit %1</translation>
    </message>
    <message>
        <source>End the other</source>
        <translation type="unfinished">Anderen beenden</translation>
    </message>
    <message>
        <source>End the other call and answer</source>
        <translation type="unfinished">Den anderen Anruf beenden und annehmen</translation>
    </message>
</context>
<context>
    <name>Line</name>
    <message>
        <source>The telephony does not answer</source>
        <translation type="unfinished">Die Telefonie antwortet nicht</translation>
    </message>
    <message>
        <source>The telephony does not run</source>
        <translation type="unfinished">Die Telefonie läuft nicht</translation>
    </message>
    <message>
        <source>This phone has no telephony</source>
        <translation type="unfinished">Dieses Telefon hat keine Telefonie</translation>
    </message>
    <message>
        <source>Conference</source>
        <translation type="unfinished">Konferenz</translation>
    </message>
    <message>
        <source>On hold by the other side</source>
        <translation type="unfinished">Von der Gegenseite gehalten</translation>
    </message>
    <message>
        <source>On hold</source>
        <translation type="unfinished">Gehalten</translation>
    </message>
    <message>
        <source>Ringing…</source>
        <translation type="unfinished">Es klingelt …</translation>
    </message>
    <message>
        <source>Calling…</source>
        <translation type="unfinished">Wird angerufen …</translation>
    </message>
</context>
<context>
    <name>NetworkDialog</name>
    <message>
        <source>Asking the network…</source>
        <translation type="unfinished">Das Netz wird gefragt …</translation>
    </message>
    <message>
        <source>The network says</source>
        <translation type="unfinished">Das Netz meldet</translation>
    </message>
    <message>
        <source>Done</source>
        <translation type="unfinished">Erledigt</translation>
    </message>
    <message>
        <source>Reply to the network</source>
        <translation type="unfinished">Antwort an das Netz</translation>
    </message>
    <message>
        <source>Send</source>
        <translation type="unfinished">Senden</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">Schließen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished">Abbrechen</translation>
    </message>
</context>
<context>
    <name>PadKey</name>
    <message>
        <source>Star</source>
        <translation type="unfinished">Stern</translation>
    </message>
    <message>
        <source>Hash</source>
        <translation type="unfinished">Raute</translation>
    </message>
</context>
<context>
    <name>PageScreen</name>
    <message>
        <source>Open pages</source>
        <translation type="unfinished">Seiten öffnen</translation>
    </message>
    <message>
        <source>Open page</source>
        <translation type="unfinished">Seite öffnen</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation type="unfinished">
            <numerusform>und %n weitere</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">Schließen</translation>
    </message>
</context>
<context>
    <name>Phone</name>
    <message>
        <source>Phone</source>
        <translation type="unfinished">Telefon</translation>
    </message>
    <message>
        <source>Call back %1</source>
        <translation type="unfinished">%1 zurückrufen</translation>
    </message>
    <message>
        <source>ddd d MMM yyyy, hh:mm</source>
        <comment>date</comment>
        <translation type="unfinished">ddd d. MMM yyyy, hh:mm</translation>
    </message>
    <message>
        <source>Replied to %1</source>
        <translation type="unfinished">%1 wurde geantwortet</translation>
    </message>
    <message>
        <source>No reply to send</source>
        <translation type="unfinished">Keine Antwort zum Senden</translation>
    </message>
    <message>
        <source>Nothing is set for this sequence</source>
        <translation type="unfinished">Für diese Folge ist nichts eingerichtet</translation>
    </message>
    <message>
        <source>%1 is not on this phone</source>
        <translation type="unfinished">%1 gibt es auf diesem Telefon nicht</translation>
    </message>
    <message>
        <source>No ongoing call</source>
        <translation type="unfinished">Kein laufender Anruf</translation>
    </message>
    <message>
        <source>No call to answer or end</source>
        <translation type="unfinished">Kein Anruf zum Annehmen oder Beenden</translation>
    </message>
    <message>
        <source>Declined %1</source>
        <translation type="unfinished">%1 abgelehnt</translation>
    </message>
    <message>
        <source>Replying to %1…</source>
        <translation type="unfinished">Antwort an %1 …</translation>
    </message>
    <message>
        <source>The call with %1 has ended</source>
        <translation type="unfinished">Der Anruf mit %1 ist beendet</translation>
    </message>
    <message>
        <source>%1 did not take the call</source>
        <translation type="unfinished">%1 hat den Anruf nicht angenommen</translation>
    </message>
    <message>
        <source>Missed call from %1</source>
        <translation type="unfinished">Verpasster Anruf von %1</translation>
    </message>
    <message>
        <source>The reply to %1 could not be sent</source>
        <translation type="unfinished">Die Antwort an %1 konnte nicht gesendet werden</translation>
    </message>
</context>
<context>
    <name>QuickReplies</name>
    <message>
        <source>Quick replies</source>
        <translation type="unfinished">Schnellantworten</translation>
    </message>
    <message>
        <source>The file of the replies cannot be opened</source>
        <translation type="unfinished">Die Datei der Antworten lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>1 reply</source>
        <translation type="unfinished">1 Antwort</translation>
    </message>
    <message numerus="yes">
        <source>%n replies</source>
        <translation type="unfinished">
            <numerusform>%n Antwort</numerusform>
            <numerusform>%n Antworten</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, not saved yet</source>
        <translation type="unfinished">%1, noch nicht gesichert</translation>
    </message>
    <message>
        <source>Add a reply</source>
        <translation type="unfinished">Antwort hinzufügen</translation>
    </message>
    <message>
        <source>New reply</source>
        <translation type="unfinished">Neue Antwort</translation>
    </message>
    <message>
        <source>Add</source>
        <translation type="unfinished">Hinzufügen</translation>
    </message>
    <message>
        <source>Defaults</source>
        <translation type="unfinished">Standard</translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished">Sichern</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">Schließen</translation>
    </message>
</context>
<context>
    <name>RemindSheet</name>
    <message>
        <source>Remind me to call back</source>
        <translation type="unfinished">An den Rückruf erinnern</translation>
    </message>
    <message>
        <source>Remove reminder</source>
        <translation type="unfinished">Erinnerung entfernen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">Schließen</translation>
    </message>
</context>
<context>
    <name>ReminderList</name>
    <message>
        <source>Reminders</source>
        <translation type="unfinished">Erinnerungen</translation>
    </message>
    <message>
        <source>There is nobody to call back</source>
        <translation type="unfinished">Niemand ist zurückzurufen</translation>
    </message>
    <message>
        <source>1 number to call back</source>
        <translation type="unfinished">1 Nummer zurückzurufen</translation>
    </message>
    <message numerus="yes">
        <source>%n numbers to call back</source>
        <translation type="unfinished">
            <numerusform>%n Nummer zurückzurufen</numerusform>
            <numerusform>%n Nummern zurückzurufen</numerusform>
        </translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished">Schließen</translation>
    </message>
</context>
<context>
    <name>ReminderRow</name>
    <message>
        <source>Remove the reminder for %1</source>
        <translation type="unfinished">Erinnerung an %1 entfernen</translation>
    </message>
</context>
<context>
    <name>ReplyRow</name>
    <message>
        <source>Reply %1</source>
        <translation type="unfinished">Antwort %1</translation>
    </message>
    <message>
        <source>Empty: it is not saved</source>
        <translation type="unfinished">Leer: wird nicht gesichert</translation>
    </message>
    <message>
        <source>Remove reply %1</source>
        <translation type="unfinished">Antwort %1 entfernen</translation>
    </message>
</context>
<context>
    <name>SimChoice</name>
    <message>
        <source>Call %1 with</source>
        <translation type="unfinished">%1 anrufen mit</translation>
    </message>
    <message>
        <source>SIM %1</source>
        <translation type="unfinished">SIM %1</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished">Abbrechen</translation>
    </message>
</context>
<context>
    <name>Sims</name>
    <message>
        <source>Calls to this phone are barred by its management</source>
        <translation type="unfinished">Anrufe an dieses Telefon sind durch dessen Verwaltung gesperrt</translation>
    </message>
    <message>
        <source>Calls from this phone are barred by its management</source>
        <translation type="unfinished">Anrufe von diesem Telefon sind durch dessen Verwaltung gesperrt</translation>
    </message>
    <message>
        <source>All calls of this phone are barred by its management</source>
        <translation type="unfinished">Alle Anrufe dieses Telefons sind durch dessen Verwaltung gesperrt</translation>
    </message>
</context>
<context>
    <name>Stage</name>
    <message>
        <source>Incoming call</source>
        <translation type="unfinished">Eingehender Anruf</translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message>
        <source>Call in progress</source>
        <translation type="unfinished">Anruf läuft</translation>
    </message>
    <message>
        <source>No telephony answers</source>
        <translation type="unfinished">Kein Telefondienst antwortet</translation>
    </message>
    <message>
        <source>Checking SIMs…</source>
        <translation type="unfinished">SIMs werden geprüft …</translation>
    </message>
    <message>
        <source>No SIM</source>
        <translation type="unfinished">Keine SIM</translation>
    </message>
    <message>
        <source>1 SIM</source>
        <translation type="unfinished">1 SIM</translation>
    </message>
    <message numerus="yes">
        <source>%n SIMs</source>
        <translation type="unfinished">
            <numerusform>%n SIM</numerusform>
            <numerusform>%n SIMs</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>text</name>
    <message>
        <source>In 1 minute</source>
        <translation type="unfinished">In 1 Minute</translation>
    </message>
    <message>
        <source>In 30 minutes</source>
        <translation type="unfinished">In 30 Minuten</translation>
    </message>
    <message>
        <source>In 1 hour</source>
        <translation type="unfinished">In 1 Stunde</translation>
    </message>
    <message>
        <source>This evening</source>
        <translation type="unfinished">Heute Abend</translation>
    </message>
    <message>
        <source>Tomorrow morning</source>
        <translation type="unfinished">Morgen früh</translation>
    </message>
    <message>
        <source>today %1</source>
        <translation type="unfinished">heute %1</translation>
    </message>
    <message>
        <source>tomorrow %1</source>
        <translation type="unfinished">morgen %1</translation>
    </message>
    <message>
        <source>ddd d MMM</source>
        <comment>date</comment>
        <translation type="unfinished">ddd d. MMM</translation>
    </message>
    <message>
        <source>ddd d MMM yyyy</source>
        <comment>date</comment>
        <translation type="unfinished">ddd d. MMM yyyy</translation>
    </message>
    <message>
        <source>now</source>
        <translation type="unfinished">jetzt</translation>
    </message>
    <message numerus="yes">
        <source>in %n min</source>
        <translation type="unfinished">
            <numerusform>in %n Min.</numerusform>
            <numerusform>in %n Min.</numerusform>
        </translation>
    </message>
    <message>
        <source>in %1 h %2 min</source>
        <translation type="unfinished">in %1 Std. %2 Min.</translation>
    </message>
    <message numerus="yes">
        <source>in %n days</source>
        <translation type="unfinished">
            <numerusform>in %n Tag</numerusform>
            <numerusform>in %n Tagen</numerusform>
        </translation>
    </message>
    <message>
        <source>Private number</source>
        <translation type="unfinished">Unbekannte Nummer</translation>
    </message>
</context>
</TS>
