<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fi" sourcelanguage="en">
<context>
    <name></name>
    <message id="parley-ap-name">
        <source>Phone</source>
        <extracomment>The name of the program.</extracomment>
        <translation type="unfinished">Puhelin</translation>
    </message>
    <message id="parley-me-please_call_later">
        <source>Please call later</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">Soitathan myöhemmin</translation>
    </message>
    <message id="parley-me-cant_talk_at_the_moment">
        <source>I can&apos;t talk at the moment</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">En voi puhua juuri nyt</translation>
    </message>
    <message id="parley-me-will_call_back">
        <source>I will call back</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">Soitan takaisin</translation>
    </message>
    <message id="parley-he-reminder">
        <source>Reminder</source>
        <extracomment>The title of a notification that it is time to call somebody without a name and a number.</extracomment>
        <translation type="unfinished">Muistutus</translation>
    </message>
    <message id="parley-bt-call">
        <source>Call</source>
        <extracomment>A button of a notification: calls the person.</extracomment>
        <translation type="unfinished">Soita</translation>
    </message>
    <message id="parley-bt-in_10_minutes">
        <source>In 10 minutes</source>
        <extracomment>A button of a notification: shows it again in 10 minutes.</extracomment>
        <translation type="unfinished">10 minuutin kuluttua</translation>
    </message>
    <message id="parley-la-due_since">
        <source>Due since %1</source>
        <extracomment>%1 is a time, or a date and a time if that was on another day.</extracomment>
        <translation type="unfinished">Määräaika oli %1</translation>
    </message>
    <message id="parley-la-error_invalid_number">
        <source>This number or text cannot be used.</source>
        <translation type="unfinished">Tätä numeroa tai tekstiä ei voi käyttää.</translation>
    </message>
    <message id="parley-la-error_busy">
        <source>The phone is busy. Try again in a moment.</source>
        <translation type="unfinished">Puhelin on varattu. Yritä hetken kuluttua uudelleen.</translation>
    </message>
    <message id="parley-la-error_not_supported">
        <source>This phone or its network does not support this.</source>
        <translation type="unfinished">Tämä puhelin tai sen verkko ei tue tätä.</translation>
    </message>
    <message id="parley-la-error_no_network">
        <source>There is no connection to the mobile network.</source>
        <translation type="unfinished">Matkapuhelinverkkoon ei ole yhteyttä.</translation>
    </message>
    <message id="parley-la-error_not_allowed">
        <source>This is not allowed.</source>
        <translation type="unfinished">Tämä ei ole sallittua.</translation>
    </message>
    <message id="parley-la-error_incorrect_password">
        <source>The password is wrong.</source>
        <translation type="unfinished">Salasana on väärä.</translation>
    </message>
    <message id="parley-la-error_no_answer">
        <source>There is no answer. Try again later.</source>
        <translation type="unfinished">Vastausta ei saatu. Yritä myöhemmin uudelleen.</translation>
    </message>
    <message id="parley-la-error_cancelled">
        <source>This was cancelled.</source>
        <translation type="unfinished">Tämä peruutettiin.</translation>
    </message>
    <message id="parley-la-error_no_service">
        <source>The phone service is not running.</source>
        <translation type="unfinished">Puhelinpalvelu ei ole käynnissä.</translation>
    </message>
    <message id="parley-la-error_no_call">
        <source>This has already ended.</source>
        <translation type="unfinished">Tämä on jo päättynyt.</translation>
    </message>
    <message id="parley-la-error_failed">
        <source>This has failed.</source>
        <translation type="unfinished">Tämä epäonnistui.</translation>
    </message>
</context>
</TS>
