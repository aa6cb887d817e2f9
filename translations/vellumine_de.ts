<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Vellumine</source>
        <translation>Über Vellumine</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>ApplicationMenu</name>
    <message>
        <source>About Vellumine</source>
        <translation>Über Vellumine</translation>
    </message>
    <message>
        <source>Preferences...</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <source>Quit Vellumine</source>
        <translation>Vellumine beenden</translation>
    </message>
</context>
<context>
    <name>BuyMeACoffeeLink</name>
    <message>
        <source>Buy me a coffee</source>
        <translation>Spendier mir einen Kaffee</translation>
    </message>
</context>
<context>
    <name>ByteCount</name>
    <message>
        <source>Zero KB</source>
        <translation>Null KB</translation>
    </message>
    <message>
        <source>%1 byte</source>
        <translation>%1 Byte</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
</context>
<context>
    <name>CWebPEncoder</name>
    <message>
        <source>WebP support is not bundled in this build.</source>
        <translation>Unterstützung für WebP ist in dieser Ausgabe nicht enthalten.</translation>
    </message>
    <message>
        <source>WebP encoder at %1 could not be launched: %2</source>
        <translation>Der WebP-Kodierer %1 konnte nicht gestartet werden: %2</translation>
    </message>
    <message>
        <source>cwebp exited with status %1</source>
        <translation>cwebp endete mit dem Status %1</translation>
    </message>
    <message>
        <source>cwebp did not create an output file</source>
        <translation>cwebp hat keine Ausgabedatei angelegt</translation>
    </message>
    <message>
        <source>cwebp did not finish within %1 seconds</source>
        <translation>cwebp wurde in %1 Sekunden nicht fertig</translation>
    </message>
    <message>
        <source>cwebp left an incomplete output file</source>
        <translation>cwebp hat eine unvollständige Ausgabedatei hinterlassen</translation>
    </message>
</context>
<context>
    <name>ColorSettingsChip</name>
    <message>
        <source>Toggle color optimization</source>
        <translation>Farboptimierung ein- oder ausschalten</translation>
    </message>
</context>
<context>
    <name>ComparisonCanvas</name>
    <message>
        <source>Before / After Review</source>
        <translation>Vorher-Nachher-Vergleich</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>Vorher</translation>
    </message>
    <message>
        <source>After</source>
        <translation>Nachher</translation>
    </message>
</context>
<context>
    <name>ConfinementSentence</name>
    <message>
        <source>Pictures are decoded in the program itself: the decoder is missing.</source>
        <translation>Bilder werden im Programm selbst gelesen: Das Leseprogramm fehlt.</translation>
    </message>
    <message>
        <source>a system call filter</source>
        <translation>einen Systemaufruf-Filter</translation>
    </message>
    <message>
        <source>Landlock %1</source>
        <translation>Landlock %1</translation>
    </message>
    <message>
        <source>no new privileges</source>
        <translation>den Verzicht auf neue Rechte</translation>
    </message>
    <message>
        <source>a memory limit</source>
        <translation>eine Speichergrenze</translation>
    </message>
    <message>
        <source>a processor time limit</source>
        <translation>eine Grenze der Rechenzeit</translation>
    </message>
    <message>
        <source>Pictures are decoded in a process of their own.</source>
        <translation>Bilder werden in einem eigenen Prozess gelesen.</translation>
    </message>
    <message>
        <source>Pictures are decoded in a process of their own, confined by %1.</source>
        <translation>Bilder werden in einem eigenen Prozess gelesen, eingeschränkt durch %1.</translation>
    </message>
</context>
<context>
    <name>ConversionAuditBadges</name>
    <message>
        <source>Metadata removed</source>
        <translation>Metadaten entfernt</translation>
    </message>
    <message>
        <source>Metadata kept</source>
        <translation>Metadaten behalten</translation>
    </message>
    <message>
        <source>sRGB</source>
        <translation>sRGB</translation>
    </message>
    <message>
        <source>Profile removed</source>
        <translation>Profil entfernt</translation>
    </message>
    <message>
        <source>Color kept</source>
        <translation>Farben behalten</translation>
    </message>
    <message>
        <source>Transparency preserved</source>
        <translation>Transparenz erhalten</translation>
    </message>
    <message>
        <source>Transparency removed</source>
        <translation>Transparenz entfernt</translation>
    </message>
</context>
<context>
    <name>DestinationPreferences</name>
    <message>
        <source>Destination</source>
        <translation>Ziel</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Filename</source>
        <translation>Dateiname</translation>
    </message>
    <message>
        <source>Prefix</source>
        <translation>Präfix</translation>
    </message>
    <message>
        <source>Suffix</source>
        <translation>Suffix</translation>
    </message>
</context>
<context>
    <name>DestinationSettingsChip</name>
    <message>
        <source>Change output destination</source>
        <translation>Ausgabeort ändern</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>Ziel</translation>
    </message>
</context>
<context>
    <name>DropWindow</name>
    <message>
        <source>Vellumine</source>
        <translation>Vellumine</translation>
    </message>
</context>
<context>
    <name>DropWindowHeader</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
</context>
<context>
    <name>FolderAccessGrants</name>
    <message>
        <source>Allow Vellumine to save converted images in %1.</source>
        <translation>Vellumine erlauben, umgewandelte Bilder in „%1“ zu sichern.</translation>
    </message>
    <message>
        <source>Allow Save Access</source>
        <translation>Sichern erlauben</translation>
    </message>
</context>
<context>
    <name>FormatSettingsChip</name>
    <message>
        <source>Change output format</source>
        <translation>Ausgabeformat ändern</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
</context>
<context>
    <name>ImageComparisonReviewView</name>
    <message>
        <source>Before / After Review</source>
        <translation>Vorher-Nachher-Vergleich</translation>
    </message>
    <message>
        <source>100% center sample</source>
        <translation>Ausschnitt der Bildmitte in 100%</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>Vorher</translation>
    </message>
    <message>
        <source>After</source>
        <translation>Nachher</translation>
    </message>
    <message>
        <source>Move the pointer</source>
        <translation>Zeiger bewegen</translation>
    </message>
</context>
<context>
    <name>ImageOptimizerError</name>
    <message>
        <source>%1 is not supported by this macOS ImageIO installation.</source>
        <translation>%1 wird von dieser macOS-ImageIO-Installation nicht unterstützt.</translation>
    </message>
    <message>
        <source>Could not create %1.</source>
        <translation>%1 konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <source>Could not finish writing %1.</source>
        <translation>%1 konnte nicht fertig geschrieben werden.</translation>
    </message>
    <message>
        <source>Could not finish writing %1: %2</source>
        <translation>%1 konnte nicht fertig geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Could not save %1: %2</source>
        <translation>%1 konnte nicht gesichert werden: %2</translation>
    </message>
    <message>
        <source>The image could not be read.</source>
        <translation>Das Bild konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Skipped because the output file already exists.</source>
        <translation>Übersprungen, weil die Ausgabedatei schon vorhanden ist.</translation>
    </message>
    <message>
        <source>The selected destination folder is no longer available.</source>
        <translation>Der gewählte Zielordner ist nicht mehr verfügbar.</translation>
    </message>
</context>
<context>
    <name>LifetimeStatsStrip</name>
    <message>
        <source>Lifetime Stats</source>
        <translation>Gesamtstatistik</translation>
    </message>
</context>
<context>
    <name>MetadataSettingsChip</name>
    <message>
        <source>Toggle metadata removal</source>
        <translation>Entfernen der Metadaten ein- oder ausschalten</translation>
    </message>
</context>
<context>
    <name>OpenFilesDialog</name>
    <message>
        <source>Optimize Images</source>
        <translation>Bilder optimieren</translation>
    </message>
</context>
<context>
    <name>OutputPreferences</name>
    <message>
        <source>Output</source>
        <translation>Ausgabe</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>Maximum</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>px</source>
        <translation>px</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
</context>
<context>
    <name>PreferencesView</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Local image conversion defaults</source>
        <translation>Voreinstellungen für die Umwandlung auf diesem Rechner</translation>
    </message>
    <message>
        <source>Optimization</source>
        <translation>Optimierung</translation>
    </message>
    <message>
        <source>Optimize color for sharing</source>
        <translation>Farben zum Weitergeben optimieren</translation>
    </message>
    <message>
        <source>Remove color management information</source>
        <translation>Informationen zum Farbmanagement entfernen</translation>
    </message>
    <message>
        <source>Remove personal information and metadata</source>
        <translation>Persönliche Informationen und Metadaten entfernen</translation>
    </message>
    <message>
        <source>Miscellaneous</source>
        <translation>Verschiedenes</translation>
    </message>
    <message>
        <source>Move original to Trash</source>
        <translation>Original in den Papierkorb legen</translation>
    </message>
    <message>
        <source>Preserve file modification time</source>
        <translation>Änderungsdatum der Datei erhalten</translation>
    </message>
    <message>
        <source>Show warning before overwrite</source>
        <translation>Vor dem Überschreiben warnen</translation>
    </message>
    <message>
        <source>Exit when optimization complete</source>
        <translation>Nach der Optimierung beenden</translation>
    </message>
    <message>
        <source>Lifetime Stats</source>
        <translation>Gesamtstatistik</translation>
    </message>
    <message>
        <source>Reset Lifetime Stats</source>
        <translation>Gesamtstatistik zurücksetzen</translation>
    </message>
</context>
<context>
    <name>PreferencesWindow</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
</context>
<context>
    <name>ProcessingResult</name>
    <message>
        <source>Converted</source>
        <translation>Umgewandelt</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>%1 gespart</translation>
    </message>
    <message>
        <source>%1. Original could not be moved to Trash</source>
        <translation>%1. Das Original konnte nicht in den Papierkorb gelegt werden</translation>
    </message>
</context>
<context>
    <name>QualitySettingsChip</name>
    <message>
        <source>Change compression quality</source>
        <translation>Kompressionsqualität ändern</translation>
    </message>
    <message>
        <source>Lossless format</source>
        <translation>Verlustfreies Format</translation>
    </message>
</context>
<context>
    <name>ResizeSettingsChip</name>
    <message>
        <source>Change resize settings</source>
        <translation>Größenänderung einstellen</translation>
    </message>
    <message>
        <source>Resize Mode</source>
        <translation>Größe ändern nach</translation>
    </message>
</context>
<context>
    <name>ResultRow</name>
    <message>
        <source>Open before and after viewer</source>
        <translation>Vorher-Nachher-Vergleich öffnen</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Im Dateimanager zeigen</translation>
    </message>
</context>
<context>
    <name>ResultTexts</name>
    <message>
        <source>%1 -&gt; %2</source>
        <translation>%1 -&gt; %2</translation>
    </message>
    <message>
        <source>%1 -&gt; %2 | no size change</source>
        <translation>%1 -&gt; %2 | Größe unverändert</translation>
    </message>
    <message>
        <source>%1 -&gt; %2 | saved %3 (%4%)</source>
        <translation>%1 -&gt; %2 | %3 gespart (%4%)</translation>
    </message>
    <message>
        <source>%1 -&gt; %2 | larger by %3 (%4%)</source>
        <translation>%1 -&gt; %2 | um %3 größer (%4%)</translation>
    </message>
</context>
<context>
    <name>ResultsListView</name>
    <message>
        <source>Results</source>
        <translation>Ergebnisse</translation>
    </message>
</context>
<context>
    <name>ResultsSummary</name>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Reduction</source>
        <translation>Ersparnis</translation>
    </message>
</context>
<context>
    <name>SettingsText</name>
    <message>
        <source>Max Width</source>
        <translation>Maximale Breite</translation>
    </message>
    <message>
        <source>Max Height</source>
        <translation>Maximale Höhe</translation>
    </message>
    <message>
        <source>Longest Edge</source>
        <translation>Längste Seite</translation>
    </message>
    <message>
        <source>No Resize</source>
        <translation>Größe behalten</translation>
    </message>
    <message>
        <source>WebP Lossy</source>
        <translation>WebP verlustbehaftet</translation>
    </message>
    <message>
        <source>WebP Lossless</source>
        <translation>WebP verlustfrei</translation>
    </message>
    <message>
        <source>Original Format</source>
        <translation>Ursprüngliches Format</translation>
    </message>
    <message>
        <source>Original Location</source>
        <translation>Ursprünglicher Ort</translation>
    </message>
    <message>
        <source>Selected Folder</source>
        <translation>Gewählter Ordner</translation>
    </message>
    <message>
        <source>Version %1 (%2)</source>
        <translation>Version %1 (%2)</translation>
    </message>
</context>
<context>
    <name>StatusMenu</name>
    <message>
        <source>Open Drop Window</source>
        <translation>Ablagefenster öffnen</translation>
    </message>
    <message>
        <source>Preferences...</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <source>Kestrova Website</source>
        <translation>Website von Kestrova</translation>
    </message>
    <message>
        <source>Quit Vellumine</source>
        <translation>Vellumine beenden</translation>
    </message>
</context>
<context>
    <name>TitleBar</name>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>Minimieren</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>Maximieren</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>vellumine::BatchAnnouncer</name>
    <message>
        <source>%1. %2</source>
        <translation>%1. %2</translation>
    </message>
</context>
<context>
    <name>vellumine::ComparisonPresenter</name>
    <message>
        <source>Before: </source>
        <translation>Vorher: </translation>
    </message>
    <message>
        <source>After: </source>
        <translation>Nachher: </translation>
    </message>
    <message>
        <source>%1% before</source>
        <translation>%1% vorher</translation>
    </message>
</context>
<context>
    <name>vellumine::ImageComparisonPresenter</name>
    <message>
        <source>Review %1</source>
        <translation>Vergleich: %1</translation>
    </message>
</context>
<context>
    <name>vellumine::OverwritePromptPresenter</name>
    <message>
        <source>Replace %1?</source>
        <translation>%1 ersetzen?</translation>
    </message>
    <message>
        <source>A file with this name already exists.</source>
        <translation>Eine Datei dieses Namens ist schon vorhanden.</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Skip</source>
        <translation>Überspringen</translation>
    </message>
</context>
<context>
    <name>vellumine::ProcessingModel</name>
    <message>
        <source>Drop images here</source>
        <translation>Bilder hier ablegen</translation>
    </message>
    <message>
        <source>No supported image files found</source>
        <translation>Keine unterstützten Bilddateien gefunden</translation>
    </message>
    <message>
        <source>Scanning for images...</source>
        <translation>Bilder werden gesucht …</translation>
    </message>
    <message>
        <source>Choose a destination folder</source>
        <translation>Zielordner wählen</translation>
    </message>
    <message>
        <source>Save permission needed</source>
        <translation>Erlaubnis zum Sichern nötig</translation>
    </message>
    <message>
        <source>Optimizing 1 image with 1 worker...</source>
        <translation>1 Bild wird in 1 Prozess optimiert …</translation>
    </message>
    <message>
        <source>Optimizing %1 images with %2 workers...</source>
        <translation>%1 Bilder werden in %2 Prozessen optimiert …</translation>
    </message>
    <message>
        <source>Optimized %1 of %2</source>
        <translation>%1 von %2 optimiert</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Stopped after %1 of %2</source>
        <translation>Angehalten nach %1 von %2</translation>
    </message>
</context>
<context>
    <name>vellumine::ProcessingPresenter</name>
    <message>
        <source>Drop image files or folders here, or onto the Vellumine Dock icon.</source>
        <translation>Bilddateien oder Ordner hier oder auf dem Vellumine-Symbol im Dock ablegen.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Images (%1)</source>
        <extracomment>The patterns in brackets stay as they are.</extracomment>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>All files (%1)</source>
        <translation>Alle Dateien (%1)</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Stop now</source>
        <translation>Sofort anhalten</translation>
    </message>
</context>
<context>
    <name>vellumine::ProductInfo</name>
    <message>
        <source>Made with care by %1</source>
        <translation>Mit Sorgfalt gemacht von %1</translation>
    </message>
    <message>
        <source>Open %1</source>
        <translation>%1 öffnen</translation>
    </message>
    <message>
        <source>Free software under the GNU General Public License, version 3 or later</source>
        <translation>Freie Software unter der GNU GPL, Version 3 oder neuer</translation>
    </message>
    <message>
        <source>With thanks to the makers of %1</source>
        <translation>Mit Dank an die Macher von %1</translation>
    </message>
</context>
<context>
    <name>vellumine::ResultsSummaryPresenter</name>
    <message>
        <source>Total Larger</source>
        <translation>Insgesamt größer</translation>
    </message>
    <message>
        <source>Total Saved</source>
        <translation>Insgesamt gespart</translation>
    </message>
    <message>
        <source>Files: %1, %2: %3, Reduction: %4</source>
        <translation>Dateien: %1, %2: %3, Ersparnis: %4</translation>
    </message>
</context>
<context>
    <name>vellumine::SettingsPresenter</name>
    <message>
        <source>%1 px</source>
        <translation>%1 px</translation>
    </message>
    <message>
        <source>Quality %1</source>
        <translation>Qualität %1</translation>
    </message>
    <message>
        <source>%1px</source>
        <translation>%1px</translation>
    </message>
    <message>
        <source>No resize</source>
        <translation>Größe behalten</translation>
    </message>
    <message>
        <source>Lossless</source>
        <translation>Verlustfrei</translation>
    </message>
    <message>
        <source>Original location</source>
        <translation>Ursprünglicher Ort</translation>
    </message>
    <message>
        <source>Choose folder</source>
        <translation>Ordner wählen</translation>
    </message>
    <message>
        <source>Remove metadata</source>
        <translation>Metadaten entfernen</translation>
    </message>
    <message>
        <source>Keep metadata</source>
        <translation>Metadaten behalten</translation>
    </message>
    <message>
        <source>sRGB</source>
        <translation>sRGB</translation>
    </message>
    <message>
        <source>Original color</source>
        <translation>Originalfarben</translation>
    </message>
    <message>
        <source>Change Folder...</source>
        <translation>Ordner ändern …</translation>
    </message>
    <message>
        <source>Choose Folder...</source>
        <translation>Ordner wählen …</translation>
    </message>
    <message>
        <source>No folder selected</source>
        <translation>Kein Ordner gewählt</translation>
    </message>
    <message>
        <source>Used when Destination is Selected Folder</source>
        <translation>Gilt, wenn das Ziel ein gewählter Ordner ist</translation>
    </message>
    <message>
        <source>Choose where converted images should be saved.</source>
        <translation>Wo sollen umgewandelte Bilder gesichert werden?</translation>
    </message>
</context>
<context>
    <name>vellumine::StatsPresenter</name>
    <message>
        <source>%1 lifetime files</source>
        <translation>Dateien insgesamt: %1</translation>
    </message>
    <message>
        <source>Net saved %1</source>
        <translation>%1 netto gespart</translation>
    </message>
    <message>
        <source>Best %1</source>
        <translation>Bestwert %1</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Gross Saved</source>
        <translation>Brutto gespart</translation>
    </message>
    <message>
        <source>Net Saved</source>
        <translation>Netto gespart</translation>
    </message>
    <message>
        <source>Original Data</source>
        <translation>Originaldaten</translation>
    </message>
    <message>
        <source>Output Data</source>
        <translation>Ausgabedaten</translation>
    </message>
    <message>
        <source>Largest Save</source>
        <translation>Höchste Ersparnis</translation>
    </message>
</context>
<context>
    <name>vellumine::UpdatePresenter</name>
    <message>
        <source>Check for updates</source>
        <translation>Nach Updates suchen</translation>
    </message>
    <message>
        <source>Update %1</source>
        <translation>Update %1</translation>
    </message>
    <message>
        <source>Download the latest Vellumine</source>
        <translation>Das neueste Vellumine herunterladen</translation>
    </message>
</context>
</TS>
