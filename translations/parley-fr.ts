<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name></name>
    <message id="parley-ap-name">
        <source>Phone</source>
        <extracomment>The name of the program.</extracomment>
        <translation type="unfinished">Téléphone</translation>
    </message>
    <message id="parley-me-please_call_later">
        <source>Please call later</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">Merci de rappeler plus tard</translation>
    </message>
    <message id="parley-me-cant_talk_at_the_moment">
        <source>I can&apos;t talk at the moment</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">Je ne peux pas parler pour le moment</translation>
    </message>
    <message id="parley-me-will_call_back">
        <source>I will call back</source>
        <extracomment>A message to a caller whose call is not answered.</extracomment>
        <translation type="unfinished">Je rappellerai</translation>
    </message>
    <message id="parley-he-reminder">
        <source>Reminder</source>
        <extracomment>The title of a notification that it is time to call somebody without a name and a number.</extracomment>
        <translation type="unfinished">Rappel</translation>
    </message>
    <message id="parley-bt-call">
        <source>Call</source>
        <extracomment>A button of a notification: calls the person.</extracomment>
        <translation type="unfinished">Appeler</translation>
    </message>
    <message id="parley-bt-in_10_minutes">
        <source>In 10 minutes</source>
        <extracomment>A button of a notification: shows it again in 10 minutes.</extracomment>
        <translation type="unfinished">Dans 10 minutes</translation>
    </message>
    <message id="parley-la-due_since">
        <source>Due since %1</source>
        <extracomment>%1 is a time, or a date and a time if that was on another day.</extracomment>
        <translation type="unfinished">En attente depuis %1</translation>
    </message>
    <message id="parley-la-error_invalid_number">
        <source>This number or text cannot be used.</source>
        <translation type="unfinished">Ce numéro ou ce texte ne peut pas être utilisé.</translation>
    </message>
    <message id="parley-la-error_busy">
        <source>The phone is busy. Try again in a moment.</source>
        <translation type="unfinished">Le téléphone est occupé. Réessayez dans un instant.</translation>
    </message>
    <message id="parley-la-error_not_supported">
        <source>This phone or its network does not support this.</source>
        <translation type="unfinished">Ce téléphone ou son réseau ne le permet pas.</translation>
    </message>
    <message id="parley-la-error_no_network">
        <source>There is no connection to the mobile network.</source>
        <translation type="unfinished">Il n’y a pas de connexion au réseau mobile.</translation>
    </message>
    <message id="parley-la-error_not_allowed">
        <source>This is not allowed.</source>
        <translation type="unfinished">Cela n’est pas autorisé.</translation>
    </message>
    <message id="parley-la-error_incorrect_password">
        <source>The password is wrong.</source>
        <translation type="unfinished">Le mot de passe est incorrect.</translation>
    </message>
    <message id="parley-la-error_no_answer">
        <source>There is no answer. Try again later.</source>
        <translation type="unfinished">Il n’y a pas de réponse. Réessayez plus tard.</translation>
    </message>
    <message id="parley-la-error_cancelled">
        <source>This was cancelled.</source>
        <translation type="unfinished">L’opération a été annulée.</translation>
    </message>
    <message id="parley-la-error_no_service">
        <source>The phone service is not running.</source>
        <translation type="unfinished">Le service téléphonique ne fonctionne pas.</translation>
    </message>
    <message id="parley-la-error_no_call">
        <source>This has already ended.</source>
        <translation type="unfinished">C’est déjà terminé.</translation>
    </message>
    <message id="parley-la-error_failed">
        <source>This has failed.</source>
        <translation type="unfinished">L’opération a échoué.</translation>
    </message>
</context>
</TS>
