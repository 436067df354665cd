<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="da">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Søger efter eksempler</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Fejl ved søgning: Forespørgslen returnerede et tomt objekt</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Fejl ved søgning: Forespørgslen returnerede forkerte data - feltet &quot;id&quot; mangler</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>API-klienten er klar</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Fejl i repository: Gruppens id blev ikke fundet - kan ikke hente eksempler</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Henter eksempler</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Fejl ved hentning: Forespørgslen returnerede et tomt objekt</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Fejl ved hentning: Forespørgslen returnerede forkerte data - feltet &quot;projects&quot; mangler</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Downloader eksempel: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Kunne ikke downloade billede: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Netværksfejl: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>eksempel</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beskrivelse</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Denne fil bruges af SDK&apos;et til at vise et billede af eksemplet på velkomstskærmen.
Den er ikke en del af eksemplet.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Objektet er ikke et repository, men: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Eksemplet %1 registreres ikke - kunne ikke finde et repository med navnet: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Der opstod en fejl under oprettelse af eksemplets manifest</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>API-klienten er ikke klar - genstarter</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Eksempler downloades ikke - kunne ikke finde et repository med navnet: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Eksempler downloades ikke - kunne ikke finde et repository med URL&apos;en: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Der blev ikke downloadet data til eksemplet: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Eksemplet %1 gemmes ikke - kunne ikke finde navnet på et repository med URL&apos;en: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Udpakker eksempel: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Den downloadede fil er ikke et arkiv</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Der opstod en fejl under udpakning</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Vælg eksempler som skal installeres</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtrer eksempler</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Navn:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Beskrivelse:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Opdateret:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Placering:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Tilføj eller fjern eksempler fra det valgte repository</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Installerede eksempler</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Repository:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Navnet på det valgte repository</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Liste over installerede eksempler</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtrer eksempler</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Tilføj eksempler fra et online repository</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Tilføj...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Fjern valgte installerede eksempler</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Fjern</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Onlineopdateringer</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Tjek med</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Tid mellem tjek efter opdateringer og download af nye eksempler.
Angiv 0 for at slå automatiske opdateringer fra.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>dag(e)s mellemrum</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Placering:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Opdateret:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mappe:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Opdateret</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Opdatering tilgængelig</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Eksempler ikke fundet</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Tjek din internetforbindelse og prøv igen senere!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Ingen eksempler valgt</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Vælg eksempler som skal fjernes, tryk på Fjern og derefter på Anvend for at anvende ændringerne.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Åbn placering...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Eksempler</translation>
    </message>
</context>
</TS>
