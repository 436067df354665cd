<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="hr">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Traženje primjera</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Greška traženja: zahtjev je vratio prazan objekt</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Greška traženja: zahtjev je vratio krive podatke – nema polja „id”</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>API klijent je spreman</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Greška spremišta: ID grupe nije pronađen – nije moguće dohvatiti primjere</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Dohvaćanje primjera</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Greška dohvaćanja: zahtjev je vratio prazan objekt</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Greška dohvaćanja: zahtjev je vratio krive podatke – nema polja „projects”</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Preuzimanje primjera: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Nije moguće preuzeti sliku: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Mrežna greška: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>primjer</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Opis</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Ovu datoteku koristi SDK za prikaz slike primjera na ekranu dobrodošlice.
Ona nije dio primjera.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Objekt nije spremište, nego: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Primjer %1 se ne registrira – nije moguće pronaći spremište s nazivom: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Došlo je do greške prilikom stvaranja manifesta primjera</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>API klijent nije spreman – ponovno pokretanje</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Primjeri se ne preuzimaju – nije moguće pronaći spremište s nazivom: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Primjeri se ne preuzimaju – nije moguće pronaći spremište s URL-om: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Podaci nisu preuzeti za primjer: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Primjer %1 se ne sprema – nije moguće pronaći naziv spremišta s URL-om: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Raspakiravanje primjera: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Preuzeta datoteka nije arhiva</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Došlo je do greške prilikom raspakiravanja</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Odaberi primjere za instaliranje</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtriraj primjere</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Naziv:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Opis:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Aktualizirano:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mjesto:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Dodaj ili ukloni primjere iz odabranog spremišta</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Instalirani primjeri</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Spremište:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Naziv odabranog spremišta</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Popis instaliranih primjera</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtriraj primjere</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Dodaj primjere iz spremišta na internetu</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Dodaj …</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Ukloni odabrane instalirane primjere</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Ukloni</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Aktualiziranja s interneta</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Provjeri svakih</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Razmak između provjera aktualiziranja i preuzimanja novih primjera.
Postavi 0 za isključivanje automatskog aktualiziranja.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>dan(a)</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mjesto:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Aktualizirano:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Stanje:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mapa:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Poveznica:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Aktualizirano</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Dostupno je aktualiziranje</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Primjeri nisu nađeni</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Provjeri internetsku vezu i pokušaj ponovno kasnije!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Nijedan primjer nije odabran</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Odaberi primjere za uklanjanje, pritisni gumb „Ukloni”, zatim pritisni gumb „Primijeni” za primjenu promjena.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Otvori mjesto …</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Primjeri</translation>
    </message>
</context>
</TS>
