<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Suche Beispiele</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Fehler bei der Suche: Die Anfrage lieferte ein leeres Objekt</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Fehler bei der Suche: Die Anfrage lieferte falsche Daten - das Feld &quot;id&quot; fehlt</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>Der API-Client ist bereit</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Fehler des Repositorys: Die Gruppenkennung wurde nicht gefunden - die Beispiele können nicht abgerufen werden</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Rufe Beispiele ab</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Fehler beim Abrufen: Die Anfrage lieferte ein leeres Objekt</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Fehler beim Abrufen: Die Anfrage lieferte falsche Daten - das Feld &quot;projects&quot; fehlt</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Lade Beispiel herunter: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Das Bild konnte nicht heruntergeladen werden: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Netzwerkfehler: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>Beispiel</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Diese Datei wird vom SDK verwendet, um im Willkommensbildschirm ein Bild des Beispiels anzuzeigen.
Sie ist nicht Teil des Beispiels.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Kein Repository, sondern ein Objekt der Klasse %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Das Beispiel %1 wird nicht registriert - es wurde kein Repository mit diesem Namen gefunden: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Beim Erstellen des Beispielmanifests ist ein Fehler aufgetreten</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>Der API-Client ist nicht bereit - Neustart</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Es werden keine Beispiele heruntergeladen - es wurde kein Repository mit diesem Namen gefunden: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Es werden keine Beispiele heruntergeladen - es wurde kein Repository mit dieser URL gefunden: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Für dieses Beispiel wurden keine Daten heruntergeladen: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Das Beispiel %1 wird nicht gespeichert - es wurde kein Repository-Name für diese URL gefunden: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Entpacke Beispiel: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Die heruntergeladene Datei ist kein Archiv</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Beim Entpacken ist ein Fehler aufgetreten</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Zu installierende Beispiele auswählen</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Beispiele filtern</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Beschreibung:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Aktualisiert:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Ort:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Beispiele des ausgewählten Repositorys hinzufügen oder entfernen</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Installierte Beispiele</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Repository:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Name des ausgewählten Repositorys</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Liste der installierten Beispiele</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Beispiele filtern</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Beispiele aus dem Online-Repository hinzufügen</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Hinzufügen...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Ausgewählte installierte Beispiele entfernen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Online-Aktualisierungen</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Suchen alle</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Zeitabstand für die Suche nach Aktualisierungen und das Herunterladen neuer Beispiele.
Geben Sie 0 ein, um automatische Aktualisierungen auszuschalten.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>Tag(e)</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Ort:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Aktualisiert:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Verzeichnis:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Verweis:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Aktualisiert</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Aktualisierung verfügbar</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Keine Beispiele gefunden</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Überprüfen Sie Ihre Internetverbindung und versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Keine Beispiele ausgewählt</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Wählen Sie die zu entfernenden Beispiele aus, klicken Sie auf &quot;Entfernen&quot; und danach auf &quot;Anwenden&quot;, um die Änderungen anzuwenden.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Ort öffnen...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Beispiele</translation>
    </message>
</context>
</TS>
