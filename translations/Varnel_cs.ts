<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="cs">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Hledají se příklady</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Chyba hledání: Požadavek vrátil prázdný objekt</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Chyba hledání: Požadavek vrátil chybná data - chybí pole &quot;id&quot;</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>Klient API je připraven</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Chyba skladiště: Nepodařilo se najít identifikátor skupiny - příklady nelze načíst</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Načítají se příklady</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Chyba načítání: Požadavek vrátil prázdný objekt</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Chyba načítání: Požadavek vrátil chybná data - chybí pole &quot;projects&quot;</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Stahuje se příklad: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Obrázek se nepodařilo stáhnout: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Chyba sítě: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>příklad</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Popis</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Tento soubor používá SDK k zobrazení obrázku příkladu na uvítací obrazovce.
Není součástí příkladu.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Tento objekt není skladiště, ale: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Příklad %1 nebude zapsán - nepodařilo se najít skladiště s názvem: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Při vytváření manifestu příkladu se vyskytla chyba</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>Klient API není připraven - spouští se znovu</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Příklady se nestáhnou - nepodařilo se najít skladiště s názvem: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Příklady se nestáhnou - nepodařilo se najít skladiště s adresou (URL): %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Nebyla stažena data příkladu: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Příklad %1 nebude uložen - nepodařilo se najít název skladiště s adresou (URL): %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Rozbaluje se příklad: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Stažený soubor není archiv</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Při rozbalování archivu se vyskytla chyba</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Vybrat příklady k instalaci</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtrovat příklady</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Název:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Popis:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Aktualizováno:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Umístění:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Přidat nebo odstranit příklady z vybraného skladiště</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Nainstalované příklady</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Skladiště:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Název vybraného skladiště</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Seznam nainstalovaných příkladů</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtrovat příklady</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Přidat příklady z internetového skladiště</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Přidat...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Odstranit vybrané nainstalované příklady</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Odstranit</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Aktualizace z internetu</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Kontrolovat každých</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Časový odstup kontrol aktualizací příkladů a stahování nových příkladů.
Hodnota 0 vypne automatické aktualizace.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>dní</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Umístění:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Aktualizováno:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Stav:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Složka:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Odkaz:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Aktualizováno</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Dostupná aktualizace</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Příklady nenalezeny</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Prověřte, prosím, své připojení k internetu a zkuste to znovu později!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Nebyly vybrány žádné příklady</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Vyberte příklady k odstranění, stiskněte tlačítko Odstranit a poté použijte změny tlačítkem Použít.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Otevřít umístění...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Příklady</translation>
    </message>
</context>
</TS>
