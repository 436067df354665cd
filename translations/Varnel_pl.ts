<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pl">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Wyszukiwanie przykładów</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Błąd wyszukiwania: żądanie zwróciło pusty obiekt</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Błąd wyszukiwania: żądanie zwróciło niepoprawne dane - brak pola &quot;id&quot;</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>Klient API jest gotowy</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Błąd repozytorium: nie odnaleziono identyfikatora grupy - nie można pobrać listy przykładów</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Pobieranie listy przykładów</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Błąd pobierania: żądanie zwróciło pusty obiekt</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Błąd pobierania: żądanie zwróciło niepoprawne dane - brak pola &quot;projects&quot;</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Pobieranie przykładu: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Nie można pobrać obrazka: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Błąd sieci: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>przykład</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Opis</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Ten plik jest używany przez SDK do wyświetlania obrazka przykładu na ekranie startowym.
Nie jest on częścią przykładu.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Obiekt nie jest repozytorium, lecz: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Przykład %1 nie zostanie zarejestrowany - nie można odnaleźć repozytorium o nazwie: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Wystąpił błąd podczas tworzenia manifestu przykładu</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>Klient API nie jest gotowy - ponowne uruchamianie</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Przykłady nie zostaną pobrane - nie można odnaleźć repozytorium o nazwie: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Przykłady nie zostaną pobrane - nie można odnaleźć repozytorium o adresie URL: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Nie pobrano danych przykładu: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Przykład %1 nie zostanie zachowany - nie można odnaleźć nazwy repozytorium o adresie URL: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Rozpakowywanie przykładu: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Pobrany plik nie jest archiwum</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Wystąpił błąd podczas rozpakowywania archiwum</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Wybierz przykłady do zainstalowania</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Przefiltruj przykłady</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Nazwa:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Opis:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Uaktualniony:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Położenie:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Dodaj lub usuń przykłady z wybranego repozytorium</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Zainstalowane przykłady</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Repozytorium:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Nazwa wybranego repozytorium</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Lista zainstalowanych przykładów</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Przefiltruj przykłady</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Dodaj przykłady z repozytorium w sieci</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Dodaj...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Usuń zaznaczone zainstalowane przykłady</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Usuń</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Uaktualnienia z sieci</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Sprawdzaj co</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Czas między sprawdzaniem uaktualnień przykładów i pobieraniem nowych przykładów.
Ustaw 0, aby wyłączyć automatyczne uaktualnienia.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>dni</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Położenie:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Uaktualniony:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Stan:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Katalog:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Odsyłacz:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Uaktualniony</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Dostępne uaktualnienie</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Nie znaleziono przykładów</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Sprawdź połączenie z siecią i spróbuj ponownie później!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Nie zaznaczono przykładów</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Zaznacz przykłady do usunięcia, naciśnij przycisk &quot;Usuń&quot;, a następnie przycisk &quot;Zastosuj&quot;, aby zastosować zmiany.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Otwórz położenie...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Przykłady</translation>
    </message>
</context>
</TS>
