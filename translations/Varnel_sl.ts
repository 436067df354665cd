<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="sl">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Iskanje primerov</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Napaka pri iskanju: Zahteva je vrnila prazen predmet</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Napaka pri iskanju: Zahteva je vrnila napačne podatke – ni polja »id«</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>Odjemalec API je pripravljen</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Napaka skladišča: Določilnika skupine ni bilo moč najti – primerov ni moč pridobiti</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Pridobivanje primerov</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Napaka pri pridobivanju: Zahteva je vrnila prazen predmet</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Napaka pri pridobivanju: Zahteva je vrnila napačne podatke – ni polja »projects«</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Prejemanje primera: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Slike ni bilo moč prejeti: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Napaka omrežja: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>primer</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Opis</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>To datoteko uporablja SDK za prikaz slike primera na pozdravnem zaslonu.
Ni del primera.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Predmet ni skladišče, ampak: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Primer %1 ne bo vpisan – ni bilo moč najti skladišča z imenom: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Med ustvarjanjem manifesta primera je prišlo do napake</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>Odjemalec API ni pripravljen – ponovni zagon</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Primeri ne bodo prejeti – ni bilo moč najti skladišča z imenom: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Primeri ne bodo prejeti – ni bilo moč najti skladišča z naslovom URL: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Podatki niso bili prejeti za primer: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Primer %1 ne bo shranjen – ni bilo moč najti imena skladišča z naslovom URL: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Razširjanje primera: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Prejeta datoteka ni arhiv</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Med razširjanjem arhiva je prišlo do napake</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Izberite primere za namestitev</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtriraj primere</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Ime:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Opis:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Posodobljeno:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mesto:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Dodaj ali odstrani primere iz izbranega skladišča</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Nameščeni primeri</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Skladišče:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Ime izbranega skladišča</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Seznam nameščenih primerov</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtriraj primere</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Dodaj primere iz spletnega skladišča</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Dodaj ...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Odstrani izbrane nameščene primere</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Odstrani</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Spletne posodobitve</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Preveri vsakih</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Čas med preverjanji posodobitev primerov in prejemanji novih primerov.
Vrednost 0 izklopi samodejne posodobitve.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>dni</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mesto:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Posodobljeno:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Stanje:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mapa:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Povezava:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Posodobljeno</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Na voljo je posodobitev</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Ni najdenih primerov</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Preverite povezavo z internetom in poskusite znova pozneje!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Izbran ni noben primer</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Izberite primere za odstranitev, pritisnite gumb »Odstrani« in nato gumb »Uveljavi«, da uveljavite spremembe.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Odpri mesto ...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Primeri</translation>
    </message>
</context>
</TS>
