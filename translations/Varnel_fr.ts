<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Recherche des exemples</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Erreur de recherche&#xa0;: la requête a renvoyé un objet nul</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Erreur de recherche&#xa0;: la requête a renvoyé des données incorrectes – pas de champ «&#xa0;id&#xa0;»</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>Le client de l’API est prêt</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Erreur du dépôt&#xa0;: identifiant du groupe introuvable – impossible de récupérer les exemples</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Récupération des exemples</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Erreur de récupération&#xa0;: la requête a renvoyé un objet nul</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Erreur de récupération&#xa0;: la requête a renvoyé des données incorrectes – pas de champ «&#xa0;projects&#xa0;»</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Téléchargement de l’exemple&#xa0;: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Impossible de télécharger l’image&#xa0;: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Erreur de réseau&#xa0;: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>exemple</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Description</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Ce fichier est utilisé par le SDK pour afficher l’image de l’exemple sur l’écran d’accueil.
Il ne fait pas partie de l’exemple.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>L’objet n’est pas un dépôt, mais&#xa0;: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>L’exemple %1 n’est pas enregistré – impossible de trouver le dépôt de nom&#xa0;: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Une erreur s’est produite lors de la création du manifeste de l’exemple</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>Le client de l’API n’est pas prêt – redémarrage</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Les exemples ne sont pas téléchargés – impossible de trouver le dépôt de nom&#xa0;: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Les exemples ne sont pas téléchargés – impossible de trouver le dépôt d’URL&#xa0;: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Aucune donnée téléchargée pour l’exemple&#xa0;: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>L’exemple %1 n’est pas enregistré – impossible de trouver le nom du dépôt d’URL&#xa0;: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Extraction de l’exemple&#xa0;: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Le fichier téléchargé n’est pas une archive</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Une erreur s’est produite lors du désarchivage</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Sélectionner les exemples à installer</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtrer les exemples</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Nom&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mis à jour&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Emplacement&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Ajouter ou supprimer des exemples du dépôt sélectionné</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Exemples installés</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Dépôt&#xa0;:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Nom du dépôt sélectionné</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Liste des exemples installés</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Filtrer les exemples</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Ajouter des exemples du dépôt en ligne</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Ajouter…</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Supprimer les exemples installés sélectionnés</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Mises à jour en ligne</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Vérifier tous les</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Délai entre deux recherches de mises à jour et téléchargements de nouveaux exemples.
Indiquer 0 pour désactiver les mises à jour automatiques.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>jour(s)</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Emplacement&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Mis à jour&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;État&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Dossier&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Lien&#xa0;:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Mis à jour</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Mise à jour disponible</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Exemples introuvables</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Vérifiez votre connexion à Internet et réessayez plus tard&#xa0;!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Aucun exemple sélectionné</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Sélectionnez les exemples à supprimer, cliquez sur «&#xa0;Supprimer&#xa0;», puis sur «&#xa0;Appliquer&#xa0;» pour appliquer les modifications.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Ouvrir l’emplacement…</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Exemples</translation>
    </message>
</context>
</TS>
