<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>ClipFacts</name>
    <message>
        <source>%1 kb/s</source>
        <translation>%1 kb/s</translation>
    </message>
    <message>
        <source>%1 Mb/s</source>
        <translation>%1 Mb/s</translation>
    </message>
    <message>
        <source>full range</source>
        <translation>voller Bereich</translation>
    </message>
    <message>
        <source>video range</source>
        <translation>Videobereich</translation>
    </message>
    <message>
        <source>Untagged, %1</source>
        <translation>Ohne Angabe, %1</translation>
    </message>
    <message>
        <source>HDR (PQ)</source>
        <translation>HDR (PQ)</translation>
    </message>
    <message>
        <source>HDR (HLG)</source>
        <translation>HDR (HLG)</translation>
    </message>
    <message>
        <source>Rec. 709</source>
        <translation>Rec. 709</translation>
    </message>
    <message>
        <source>Rec. 2020</source>
        <translation>Rec. 2020</translation>
    </message>
    <message>
        <source>Rec. 601</source>
        <translation>Rec. 601</translation>
    </message>
    <message>
        <source>Display P3</source>
        <translation>Display P3</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>Video</translation>
    </message>
    <message>
        <source>Codec</source>
        <translation>Codec</translation>
    </message>
    <message>
        <source>Dimensions</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
    <message>
        <source>Frame rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
    <message>
        <source>Bit depth</source>
        <translation>Bittiefe</translation>
    </message>
    <message>
        <source>%1-bit</source>
        <translation>%1 Bit</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Data rate</source>
        <translation>Datenrate</translation>
    </message>
    <message>
        <source>Audio</source>
        <translation>Ton</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>No audio</source>
        <translation>Kein Ton</translation>
    </message>
    <message>
        <source>Sample rate</source>
        <translation>Abtastrate</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Clip</source>
        <translation>Clip</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Container</source>
        <translation>Container</translation>
    </message>
</context>
<context>
    <name>CurveEditorAxis</name>
    <message>
        <source>⌘ drag to bypass snapping.</source>
        <translation>⌘-Ziehen rastet nicht ein.</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
</context>
<context>
    <name>CurveGraph</name>
    <message>
        <source>%1%2 s</source>
        <translation>%1%2 s</translation>
    </message>
    <message>
        <source>1 point</source>
        <translation>1 Punkt</translation>
    </message>
    <message>
        <source>%1 points</source>
        <translation>%1 Punkte</translation>
    </message>
</context>
<context>
    <name>ExportNotice</name>
    <message>
        <source>Last export verified</source>
        <translation>Letzter Export geprüft</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Export failed</source>
        <translation>Der Export ist gescheitert</translation>
    </message>
</context>
<context>
    <name>ExportTexts</name>
    <message>
        <source>About a second left</source>
        <translation>Noch etwa eine Sekunde</translation>
    </message>
    <message>
        <source>About %1 seconds left</source>
        <translation>Noch etwa %1 Sekunden</translation>
    </message>
    <message>
        <source>About a minute left</source>
        <translation>Noch etwa eine Minute</translation>
    </message>
    <message>
        <source>About %1 minutes left</source>
        <translation>Noch etwa %1 Minuten</translation>
    </message>
    <message>
        <source>About %1 h %2 min left</source>
        <translation>Noch etwa %1 h %2 min</translation>
    </message>
    <message>
        <source>%1 is not supported for source-matched export. Loftwell Video can try HEVC / H.265 instead, then verify its dimensions, frame rate, bit depth, color tags, audio, and duration. The export may still fail if %2 cannot decode the source codec.</source>
        <translation>%1 lässt sich nicht wie die Quelle exportieren. Loftwell Video kann stattdessen HEVC / H.265 verwenden und dann Größe, Bildrate, Bittiefe, Farbangaben, Ton und Dauer prüfen. Der Export kann scheitern, wenn sich der Codec der Quelle auf %2 nicht lesen lässt.</translation>
    </message>
</context>
<context>
    <name>KeyNames</name>
    <message>
        <source>your Mac</source>
        <translation>Ihrem Mac</translation>
    </message>
    <message>
        <source>Ctrl</source>
        <translation>Strg</translation>
    </message>
    <message>
        <source>Alt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Shift</translation>
    </message>
    <message>
        <source>Backspace</source>
        <translation>Rücktaste</translation>
    </message>
    <message>
        <source>this computer</source>
        <translation>diesem Computer</translation>
    </message>
</context>
<context>
    <name>ProjectDate</name>
    <message>
        <source>Today, %1</source>
        <translation>Heute, %1</translation>
    </message>
    <message>
        <source>Yesterday, %1</source>
        <translation>Gestern, %1</translation>
    </message>
    <message>
        <source>d MMMM</source>
        <translation>d. MMMM</translation>
    </message>
    <message>
        <source>d MMMM yyyy</source>
        <translation>d. MMMM yyyy</translation>
    </message>
    <message>
        <source>en</source>
        <comment>the language's code</comment>
        <translation>de</translation>
    </message>
</context>
<context>
    <name>ProjectList</name>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Remove from list</source>
        <translation>Aus der Liste entfernen</translation>
    </message>
    <message>
        <source>Clip not found</source>
        <translation>Clip nicht gefunden</translation>
    </message>
</context>
<context>
    <name>ReleaseNotes</name>
    <message>
        <source>Change the speed of a clip along a smooth curve, and see how long it plays while you drag.</source>
        <translation>Ändern Sie das Tempo eines Clips entlang einer weichen Kurve, und sehen Sie beim Ziehen, wie lange er spielt.</translation>
    </message>
    <message>
        <source>Where the curve runs slow, in-between frames keep the motion smooth; render them ahead to play them back.</source>
        <translation>Wo die Kurve langsam ist, halten Zwischenbilder die Bewegung flüssig; im Voraus berechnet lassen sie sich abspielen.</translation>
    </message>
    <message>
        <source>Crop for a phone or a square, keyframe the framing or let it follow a subject, and zoom in where it matters.</source>
        <translation>Beschneiden Sie auf Hochformat oder Quadrat, führen Sie den Ausschnitt von Hand oder mit dem Motiv, und zoomen Sie dorthin, wo es zählt.</translation>
    </message>
    <message>
        <source>Every export is opened again and compared with its source before it takes its place.</source>
        <translation>Jeder Export wird wieder geöffnet und mit seiner Quelle verglichen, bevor er an seinen Platz kommt.</translation>
    </message>
</context>
<context>
    <name>SaveDialog</name>
    <message>
        <source>%1 already exists. Do you want to replace it?</source>
        <translation>%1 ist bereits vorhanden. Soll es ersetzt werden?</translation>
    </message>
</context>
<context>
    <name>Session</name>
    <message>
        <source>Saving…</source>
        <translation>Wird gesichert …</translation>
    </message>
    <message>
        <source>Saved</source>
        <translation>Gesichert</translation>
    </message>
    <message>
        <source>Saved as a copy: this project was changed elsewhere.</source>
        <translation>Als Kopie gesichert: Das Projekt wurde anderswo geändert.</translation>
    </message>
    <message>
        <source>Could not save your project</source>
        <translation>Das Projekt ließ sich nicht sichern</translation>
    </message>
    <message>
        <source>Could not change the list of projects</source>
        <translation>Die Liste der Projekte ließ sich nicht ändern</translation>
    </message>
    <message>
        <source>Preview not rendered</source>
        <translation>Vorschau nicht berechnet</translation>
    </message>
    <message>
        <source>Preview rendering</source>
        <translation>Vorschau wird berechnet</translation>
    </message>
    <message>
        <source>Preview rendered</source>
        <translation>Vorschau berechnet</translation>
    </message>
    <message>
        <source>Original frames · Optical Flow off</source>
        <translation>Originalbilder · Optical Flow aus</translation>
    </message>
    <message>
        <source>Optical Flow · preview not rendered</source>
        <translation>Optical Flow · Vorschau nicht berechnet</translation>
    </message>
    <message>
        <source>No rendered previews</source>
        <translation>Keine berechneten Vorschauen</translation>
    </message>
    <message>
        <source>Render all ranges</source>
        <translation>Alle berechnen</translation>
    </message>
    <message>
        <source>Rendering all ranges %1%</source>
        <translation>Berechnung %1 %</translation>
    </message>
    <message>
        <source>All ranges rendered</source>
        <translation>Alles berechnet</translation>
    </message>
    <message>
        <source>Could not decode the original frame. Toggle Compare to retry.</source>
        <translation>Das Originalbild ließ sich nicht lesen. Vergleich aus- und einschalten versucht es erneut.</translation>
    </message>
    <message>
        <source>Loading the source frame…</source>
        <translation>Das Originalbild wird geladen …</translation>
    </message>
    <message>
        <source>Draw a tight box around the subject (torso for a player). Tracking follows it in both directions.</source>
        <translation>Ziehen Sie einen engen Rahmen um das Motiv (bei Spielern um den Oberkörper). Es wird in beide Richtungen verfolgt.</translation>
    </message>
    <message>
        <source>Following the subject…</source>
        <translation>Das Motiv wird verfolgt …</translation>
    </message>
    <message>
        <source>Looking for the subject…</source>
        <translation>Das Motiv wird gesucht …</translation>
    </message>
    <message>
        <source>Framing changed while tracking. Track again to keep your new edits.</source>
        <translation>Der Ausschnitt wurde währenddessen geändert. Verfolgen Sie erneut, um Ihre Änderungen zu behalten.</translation>
    </message>
    <message>
        <source>There is no room for so many framing points. Remove some and track again.</source>
        <translation>So viele Ausschnittspunkte haben keinen Platz. Entfernen Sie welche und verfolgen Sie erneut.</translation>
    </message>
    <message>
        <source>Tracking finished with gaps. Review the orange flags where the subject was lost.</source>
        <translation>Verfolgt mit Lücken. Orange Fahnen zeigen, wo das Motiv verloren ging.</translation>
    </message>
    <message>
        <source>Tracking stopped — subject lost. Choose a clearer frame and try again.</source>
        <translation>Das Motiv ging verloren. Wählen Sie ein deutlicheres Bild und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Tracking stopped — subject lost. Tracked %1 keyframes. Review the orange flags.</source>
        <translation>Das Motiv ging verloren. %1 Punkte sind gesetzt. Sehen Sie die orangen Fahnen durch.</translation>
    </message>
    <message>
        <source>This video does not match the project&apos;s original clip. Choose the original file to relink it.</source>
        <translation>Dieses Video ist nicht der Original-Clip des Projekts. Wählen Sie die Originaldatei.</translation>
    </message>
    <message>
        <source>Could not save: %1</source>
        <translation>Nicht gesichert: %1</translation>
    </message>
    <message>
        <source>Tracking complete: %1 framing points across the retained clip. %2 to undo.</source>
        <translation>Verfolgung abgeschlossen: %1 Ausschnittpunkte im beibehaltenen Clip. %2 macht sie rückgängig.</translation>
    </message>
</context>
<context>
    <name>Shortcuts</name>
    <message>
        <source>Tab</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Entf</translation>
    </message>
    <message>
        <source>Workspace</source>
        <translation>Arbeitsbereich</translation>
    </message>
    <message>
        <source>⌘O</source>
        <translation>⌘O</translation>
    </message>
    <message>
        <source>Open a clip or project</source>
        <translation>Clip oder Projekt öffnen</translation>
    </message>
    <message>
        <source>⌘S</source>
        <translation>⌘S</translation>
    </message>
    <message>
        <source>Save project</source>
        <translation>Projekt sichern</translation>
    </message>
    <message>
        <source>⌃⌘S</source>
        <translation>⌃⌘S</translation>
    </message>
    <message>
        <source>Show or hide projects</source>
        <translation>Projekte ein- oder ausblenden</translation>
    </message>
    <message>
        <source>⌥⌘I</source>
        <translation>⌥⌘I</translation>
    </message>
    <message>
        <source>Show or hide inspector</source>
        <translation>Inspektor ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Playback</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Play or pause</source>
        <translation>Abspielen oder anhalten</translation>
    </message>
    <message>
        <source>J / K / L</source>
        <translation>J / K / L</translation>
    </message>
    <message>
        <source>Shuttle backward, stop, or forward</source>
        <translation>Rückwärts, Stopp, vorwärts</translation>
    </message>
    <message>
        <source>← / →</source>
        <translation>← / →</translation>
    </message>
    <message>
        <source>Move one output frame</source>
        <translation>Ein Bild der Ausgabe weiter</translation>
    </message>
    <message>
        <source>↑ / ↓</source>
        <translation>↑ / ↓</translation>
    </message>
    <message>
        <source>Previous or next curve point</source>
        <translation>Voriger oder nächster Punkt</translation>
    </message>
    <message>
        <source>⌘F</source>
        <translation>⌘F</translation>
    </message>
    <message>
        <source>Full-screen preview (Esc or ⌘F exits)</source>
        <translation>Vollbildvorschau (Esc oder ⌘F beendet)</translation>
    </message>
    <message>
        <source>↑ / ↓ (full screen)</source>
        <translation>↑ / ↓ (Vollbild)</translation>
    </message>
    <message>
        <source>Jump to start or end</source>
        <translation>Zum Anfang oder Ende</translation>
    </message>
    <message>
        <source>Timeline</source>
        <translation>Zeitachse</translation>
    </message>
    <message>
        <source>Drag graph</source>
        <translation>Im Diagramm ziehen</translation>
    </message>
    <message>
        <source>Scrub the playhead</source>
        <translation>Abspielposition bewegen</translation>
    </message>
    <message>
        <source>⌘+ / ⌘−</source>
        <translation>⌘+ / ⌘−</translation>
    </message>
    <message>
        <source>Zoom in or out</source>
        <translation>Zeitachse vergrößern oder verkleinern</translation>
    </message>
    <message>
        <source>⇧← / ⇧→</source>
        <translation>⇧← / ⇧→</translation>
    </message>
    <message>
        <source>Pan left or right</source>
        <translation>Nach links oder rechts</translation>
    </message>
    <message>
        <source>⇧Z or \</source>
        <translation>⇧Z oder \</translation>
    </message>
    <message>
        <source>Zoom to fit</source>
        <translation>Ganz zeigen</translation>
    </message>
    <message>
        <source>⌥ scroll</source>
        <translation>⌥ Rad</translation>
    </message>
    <message>
        <source>Zoom around the pointer</source>
        <translation>Um den Zeiger vergrößern</translation>
    </message>
    <message>
        <source>⇧ scroll</source>
        <translation>⇧ Rad</translation>
    </message>
    <message>
        <source>Pan the visible range</source>
        <translation>Den sichtbaren Bereich verschieben</translation>
    </message>
    <message>
        <source>Trimming</source>
        <translation>Beschneiden</translation>
    </message>
    <message>
        <source>Q</source>
        <translation>Q</translation>
    </message>
    <message>
        <source>Set trim start to the playhead</source>
        <translation>Anfang an die Abspielposition setzen</translation>
    </message>
    <message>
        <source>W</source>
        <translation>W</translation>
    </message>
    <message>
        <source>Set trim end to the playhead</source>
        <translation>Ende an die Abspielposition setzen</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Z</source>
        <translation>Z</translation>
    </message>
    <message>
        <source>Add a zoom block at the playhead</source>
        <translation>Zoom-Block an der Abspielposition</translation>
    </message>
    <message>
        <source>Drag lane</source>
        <translation>In der Spur ziehen</translation>
    </message>
    <message>
        <source>Create, move, or resize zoom blocks</source>
        <translation>Zoom-Blöcke anlegen, bewegen, dehnen</translation>
    </message>
    <message>
        <source>⌫</source>
        <translation>⌫</translation>
    </message>
    <message>
        <source>Delete the selected zoom block</source>
        <translation>Den gewählten Zoom-Block löschen</translation>
    </message>
    <message>
        <source>Drag target</source>
        <translation>Ziel ziehen</translation>
    </message>
    <message>
        <source>Set the zoom&apos;s focal point on the video</source>
        <translation>Brennpunkt des Zooms auf dem Bild</translation>
    </message>
    <message>
        <source>Social crop</source>
        <translation>Ausschnitt</translation>
    </message>
    <message>
        <source>V</source>
        <translation>V</translation>
    </message>
    <message>
        <source>Toggle the crop (9:16, 1:1, or 4:5)</source>
        <translation>Ausschnitt ein oder aus (9:16, 1:1 oder 4:5)</translation>
    </message>
    <message>
        <source>Switch between Speed and Framing curves</source>
        <translation>Zwischen Tempo und Ausschnitt wechseln</translation>
    </message>
    <message>
        <source>Drag preview</source>
        <translation>Im Bild ziehen</translation>
    </message>
    <message>
        <source>Keyframe the framing at the playhead</source>
        <translation>Ausschnitt an der Abspielposition festhalten</translation>
    </message>
    <message>
        <source>Curve editing</source>
        <translation>Kurve</translation>
    </message>
    <message>
        <source>Click / drag</source>
        <translation>Klicken / Ziehen</translation>
    </message>
    <message>
        <source>Add or move a curve point</source>
        <translation>Punkt anlegen oder bewegen</translation>
    </message>
    <message>
        <source>⌥ click</source>
        <translation>⌥ Klick</translation>
    </message>
    <message>
        <source>Add a point at the pointer speed</source>
        <translation>Punkt beim Tempo des Zeigers</translation>
    </message>
    <message>
        <source>⇧ drag</source>
        <translation>⇧ Ziehen</translation>
    </message>
    <message>
        <source>Marquee-select curve points</source>
        <translation>Punkte im Rechteck wählen</translation>
    </message>
    <message>
        <source>⌘ drag</source>
        <translation>⌘ Ziehen</translation>
    </message>
    <message>
        <source>Bypass speed snapping</source>
        <translation>Ohne Einrasten</translation>
    </message>
    <message>
        <source>Delete selected points</source>
        <translation>Gewählte Punkte löschen</translation>
    </message>
    <message>
        <source>⌘Z / ⇧⌘Z</source>
        <translation>⌘Z / ⇧⌘Z</translation>
    </message>
    <message>
        <source>Undo or redo</source>
        <translation>Widerrufen oder wiederholen</translation>
    </message>
</context>
<context>
    <name>SoundStrip</name>
    <message>
        <source>No audio</source>
        <translation>Kein Ton</translation>
    </message>
</context>
<context>
    <name>TimeAxis</name>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
</context>
<context>
    <name>ValueFormats</name>
    <message>
        <source>Type a time, as 00:02.120.</source>
        <translation>Eine Zeit, etwa 00:02.120.</translation>
    </message>
    <message>
        <source>Type a speed, as 0.25x or 25%.</source>
        <translation>Ein Tempo, etwa 0.25x oder 25%.</translation>
    </message>
    <message>
        <source>Type a position, as 71% or Left.</source>
        <translation>Eine Position, etwa 71% oder Links.</translation>
    </message>
</context>
<context>
    <name>ValueText</name>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Mitte</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
</context>
<context>
    <name>ZoomTarget</name>
    <message>
        <source>⌥-drag moves it</source>
        <translation>⌥-Ziehen bewegt es</translation>
    </message>
</context>
<context>
    <name>flowtide::ChosenFrame</name>
    <message>
        <source>Chosen frame</source>
        <translation>Gewähltes Bild</translation>
    </message>
</context>
<context>
    <name>flowtide::ClipLane</name>
    <message>
        <source>Clip</source>
        <translation>Clip</translation>
    </message>
    <message>
        <source>Set trim start to the playhead</source>
        <translation>Anfang an die Abspielposition setzen</translation>
    </message>
    <message>
        <source>Set trim end to the playhead</source>
        <translation>Ende an die Abspielposition setzen</translation>
    </message>
    <message>
        <source>Reset trim</source>
        <translation>Beschnitt zurücksetzen</translation>
    </message>
</context>
<context>
    <name>flowtide::ClipTab</name>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Preview proxy</source>
        <translation>Vorschau-Proxy</translation>
    </message>
    <message>
        <source>Build 720p proxy</source>
        <translation>720p-Proxy erstellen</translation>
    </message>
    <message>
        <source>Building 720p preview proxy...</source>
        <translation>720p-Vorschau-Proxy wird erstellt …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>720p proxy ready</source>
        <translation>720p-Proxy bereit</translation>
    </message>
    <message>
        <source>Last export</source>
        <translation>Letzter Export</translation>
    </message>
    <message>
        <source>Last export verified</source>
        <translation>Letzter Export geprüft</translation>
    </message>
</context>
<context>
    <name>flowtide::ComparisonView</name>
    <message>
        <source>Comparison of original and retimed frames</source>
        <translation>Vergleich von Original und neuem Tempo</translation>
    </message>
    <message>
        <source>Original %1, retimed %2</source>
        <translation>Original %1, neues Tempo %2</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>Retimed</source>
        <translation>Neues Tempo</translation>
    </message>
    <message>
        <source>Loading the source frame…</source>
        <translation>Das Originalbild wird geladen …</translation>
    </message>
    <message>
        <source>Source frame</source>
        <translation>Originalbild</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>Ausgabe</translation>
    </message>
    <message>
        <source>Drag to pan both pictures</source>
        <translation>Ziehen verschiebt beide Bilder</translation>
    </message>
</context>
<context>
    <name>flowtide::CoverageBar</name>
    <message>
        <source>Subject tracking coverage</source>
        <translation>Verfolgte Abschnitte</translation>
    </message>
    <message>
        <source>Teal: tracked frames. Orange flags: subject lost. Click a flag to go to the last tracked frame. Uncoloured sections have not been tracked.</source>
        <translation>Türkis: verfolgte Bilder. Orange Fahnen: Motiv verloren. Ein Klick auf eine Fahne führt zum letzten verfolgten Bild. Farblose Abschnitte wurden nicht verfolgt.</translation>
    </message>
    <message>
        <source>No tracked frames yet. Use Track subject in the Framing inspector.</source>
        <translation>Noch nichts verfolgt. „Motiv verfolgen“ steht im Inspektor unter Ausschnitt.</translation>
    </message>
    <message>
        <source>Subject lost after %1s. Click to review this frame.</source>
        <translation>Motiv nach %1 s verloren. Klicken zeigt dieses Bild.</translation>
    </message>
    <message>
        <source>Subject lost before %1s. Click to review this frame.</source>
        <translation>Motiv vor %1 s verloren. Klicken zeigt dieses Bild.</translation>
    </message>
    <message>
        <source>Tracked %1–%2 seconds</source>
        <translation>Verfolgt von Sekunde %1 bis %2</translation>
    </message>
</context>
<context>
    <name>flowtide::CurveGraph</name>
    <message>
        <source>Framing curve</source>
        <translation>Ausschnittskurve</translation>
    </message>
    <message>
        <source>Speed curve</source>
        <translation>Tempokurve</translation>
    </message>
    <message>
        <source>%1 points</source>
        <translation>%1 Punkte</translation>
    </message>
    <message>
        <source>%1 points selected</source>
        <translation>%1 Punkte gewählt</translation>
    </message>
    <message>
        <source>Trim start, %1 seconds, %2</source>
        <translation>Anfang, %1 Sekunden, %2</translation>
    </message>
    <message>
        <source>Trim end, %1 seconds, %2</source>
        <translation>Ende, %1 Sekunden, %2</translation>
    </message>
    <message>
        <source>Point %1 of %2, %3 seconds, %4</source>
        <translation>Punkt %1 von %2, %3 Sekunden, %4</translation>
    </message>
    <message>
        <source>Add point here</source>
        <translation>Punkt hier anlegen</translation>
    </message>
    <message>
        <source>⌥ click</source>
        <translation>⌥ Klick</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Einsetzen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Reset framing</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Reset curve</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Delete</source>
        <comment>the key</comment>
        <translation>Entf</translation>
    </message>
</context>
<context>
    <name>flowtide::DropTarget</name>
    <message>
        <source>Open a video to edit</source>
        <translation>Öffnen Sie ein Video zum Bearbeiten</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Öffnen …</translation>
    </message>
    <message>
        <source>Open a clip or project (⌘O)</source>
        <translation>Clip oder Projekt öffnen (⌘O)</translation>
    </message>
    <message>
        <source>Drop to open “%1”</source>
        <translation>Loslassen öffnet „%1“</translation>
    </message>
    <message>
        <source>Only MOV, MP4, M4V and saved projects open here.</source>
        <translation>Hier lassen sich nur MOV, MP4, M4V und gesicherte Projekte öffnen.</translation>
    </message>
    <message>
        <source>Drag a video here to adjust its speed curve and keyframe the crop’s center position.</source>
        <translation>Ziehen Sie ein Video hierher, um seine Geschwindigkeitskurve und die Mitte des Ausschnitts zu bestimmen.</translation>
    </message>
    <message>
        <source>MOV · MP4 · M4V · Saved projects     ⌘O</source>
        <translation>MOV · MP4 · M4V · Gesicherte Projekte     ⌘O</translation>
    </message>
</context>
<context>
    <name>flowtide::ExportPanel</name>
    <message>
        <source>Export</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>Export was cancelled.</source>
        <translation>Der Export wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Export again…</source>
        <translation>Erneut exportieren …</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Close (Esc)</source>
        <translation>Schließen (Esc)</translation>
    </message>
    <message>
        <source>Verifying export…</source>
        <translation>Der Export wird geprüft …</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>Export läuft</translation>
    </message>
    <message>
        <source>The file is opened again and compared with the clip before it takes its place.</source>
        <translation>Die Datei wird wieder geöffnet und mit dem Clip verglichen, bevor sie an ihren Platz kommt.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>%1 of %2 frames</source>
        <translation>%1 von %2 Bildern</translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
    <message>
        <source>Last export verified</source>
        <translation>Letzter Export geprüft</translation>
    </message>
    <message>
        <source>Copy report</source>
        <translation>Bericht kopieren</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Export failed</source>
        <translation>Der Export ist gescheitert</translation>
    </message>
    <message>
        <source>Copy message</source>
        <translation>Meldung kopieren</translation>
    </message>
    <message>
        <source>Source video codec cannot be matched</source>
        <translation>Der Codec der Quelle ist nicht verfügbar</translation>
    </message>
    <message>
        <source>Try HEVC / H.265</source>
        <translation>HEVC / H.265 verwenden</translation>
    </message>
</context>
<context>
    <name>flowtide::FlowLane</name>
    <message>
        <source>Optical Flow ranges</source>
        <translation>Optical-Flow-Bereiche</translation>
    </message>
    <message>
        <source>Render</source>
        <translation>Berechnen</translation>
    </message>
    <message>
        <source>Render this range</source>
        <translation>Diesen Bereich berechnen</translation>
    </message>
    <message>
        <source>Render all ranges</source>
        <translation>Alle berechnen</translation>
    </message>
    <message>
        <source>The curve never runs slow enough to need new frames.</source>
        <translation>Die Kurve ist nirgends so langsam, dass neue Bilder nötig wären.</translation>
    </message>
    <message>
        <source>%1 ranges</source>
        <translation>%1 Bereiche</translation>
    </message>
    <message>
        <source>Rendered</source>
        <translation>Berechnet</translation>
    </message>
    <message>
        <source>Loop this range</source>
        <translation>Diesen Bereich wiederholen</translation>
    </message>
    <message>
        <source>Use Original Frames</source>
        <translation>Originalbilder verwenden</translation>
    </message>
    <message>
        <source>Use Optical Flow</source>
        <translation>Optical Flow verwenden</translation>
    </message>
    <message>
        <source>original frames</source>
        <translation>Originalbilder</translation>
    </message>
    <message>
        <source>rendered</source>
        <translation>berechnet</translation>
    </message>
    <message>
        <source>rendering</source>
        <translation>wird berechnet</translation>
    </message>
    <message>
        <source>not rendered</source>
        <translation>nicht berechnet</translation>
    </message>
    <message>
        <source>Optical Flow range %1–%2 seconds, %3</source>
        <translation>Optical-Flow-Bereich %1–%2 Sekunden, %3</translation>
    </message>
</context>
<context>
    <name>flowtide::FlowRangeRow</name>
    <message>
        <source>Optical Flow</source>
        <translation>Optical Flow</translation>
    </message>
    <message>
        <source>Preview rendering</source>
        <translation>Vorschau wird berechnet</translation>
    </message>
    <message>
        <source>Optical Flow, %1</source>
        <translation>Optical Flow, %1</translation>
    </message>
    <message>
        <source>%1–%2 s</source>
        <translation>%1–%2 s</translation>
    </message>
    <message>
        <source>Preview rendered</source>
        <translation>Vorschau berechnet</translation>
    </message>
    <message>
        <source>Original frames · Optical Flow off</source>
        <translation>Originalbilder · Optical Flow aus</translation>
    </message>
    <message>
        <source>Preview not rendered</source>
        <translation>Vorschau nicht berechnet</translation>
    </message>
    <message>
        <source>Render this range</source>
        <translation>Diesen Bereich berechnen</translation>
    </message>
    <message>
        <source>Loop this range</source>
        <translation>Diesen Bereich wiederholen</translation>
    </message>
    <message>
        <source>Use Original Frames</source>
        <translation>Originalbilder verwenden</translation>
    </message>
    <message>
        <source>Use Optical Flow</source>
        <translation>Optical Flow verwenden</translation>
    </message>
</context>
<context>
    <name>flowtide::FlowSection</name>
    <message>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
    <message>
        <source>In-between frames</source>
        <translation>Zwischenbilder</translation>
    </message>
    <message>
        <source>Optical Flow</source>
        <translation>Optical Flow</translation>
    </message>
    <message>
        <source>Original Frames</source>
        <translation>Originalbilder</translation>
    </message>
    <message>
        <source>Smooth motion</source>
        <translation>Flüssig ab</translation>
    </message>
    <message>
        <source>The curve never runs slow enough to need new frames.</source>
        <translation>Die Kurve ist nirgends so langsam, dass neue Bilder nötig wären.</translation>
    </message>
    <message>
        <source>Render all ranges</source>
        <translation>Alle berechnen</translation>
    </message>
    <message>
        <source>Render every purple range so you can play it back with its new frames</source>
        <translation>Jeden violetten Bereich berechnen, um ihn mit seinen neuen Bildern abzuspielen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Remove preview renders while keeping all Optical Flow ranges</source>
        <translation>Berechnete Vorschauen entfernen, die Optical-Flow-Bereiche behalten</translation>
    </message>
    <message>
        <source>No rendered previews</source>
        <translation>Keine berechneten Vorschauen</translation>
    </message>
</context>
<context>
    <name>flowtide::FramingTab</name>
    <message>
        <source>Social crop</source>
        <translation>Ausschnitt</translation>
    </message>
    <message>
        <source>Toggle the crop (9:16, 1:1, or 4:5)</source>
        <translation>Ausschnitt ein oder aus (9:16, 1:1 oder 4:5)</translation>
    </message>
    <message>
        <source>Aspect</source>
        <translation>Seitenverhältnis</translation>
    </message>
    <message>
        <source>Output size</source>
        <translation>Ausgabegröße</translation>
    </message>
    <message>
        <source>Lock center</source>
        <translation>Mitte sperren</translation>
    </message>
    <message>
        <source>Framing curve</source>
        <translation>Ausschnittskurve</translation>
    </message>
    <message>
        <source>Reset framing</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Glide</source>
        <translation>Gleiten</translation>
    </message>
    <message>
        <source>Vertical crop export currently requires an unrotated source clip.</source>
        <translation>Ein Ausschnitt lässt sich derzeit nur von ungedrehten Clips exportieren.</translation>
    </message>
    <message>
        <source>The clip is not wider than the crop frame and is exported uncropped.</source>
        <translation>Der Clip ist nicht breiter als der Ausschnitt und wird ganz exportiert.</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
</context>
<context>
    <name>flowtide::FullScreenControls</name>
    <message>
        <source>Jump to start</source>
        <translation>Zum Anfang</translation>
    </message>
    <message>
        <source>Jump to start (↑)</source>
        <translation>Zum Anfang (↑)</translation>
    </message>
    <message>
        <source>Previous output frame</source>
        <translation>Voriges Bild der Ausgabe</translation>
    </message>
    <message>
        <source>Previous output frame (←)</source>
        <translation>Voriges Bild der Ausgabe (←)</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Play or pause (Space)</source>
        <translation>Abspielen oder anhalten (Leertaste)</translation>
    </message>
    <message>
        <source>Next output frame</source>
        <translation>Nächstes Bild der Ausgabe</translation>
    </message>
    <message>
        <source>Next output frame (→)</source>
        <translation>Nächstes Bild der Ausgabe (→)</translation>
    </message>
    <message>
        <source>Jump to end</source>
        <translation>Zum Ende</translation>
    </message>
    <message>
        <source>Jump to end (↓)</source>
        <translation>Zum Ende (↓)</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Loop this range</source>
        <translation>Diesen Bereich wiederholen</translation>
    </message>
    <message>
        <source>Leave full screen</source>
        <translation>Vollbild verlassen</translation>
    </message>
    <message>
        <source>Leave full screen (⌘F)</source>
        <translation>Vollbild verlassen (⌘F)</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stumm</translation>
    </message>
    <message>
        <source>Turn the sound on</source>
        <translation>Ton einschalten</translation>
    </message>
    <message>
        <source>Turn the sound off</source>
        <translation>Ton ausschalten</translation>
    </message>
</context>
<context>
    <name>flowtide::FullScreenPreview</name>
    <message>
        <source>Full-screen preview</source>
        <translation>Vollbildvorschau</translation>
    </message>
    <message>
        <source>Esc or ⌘F exits</source>
        <translation>Esc oder ⌘F beendet</translation>
    </message>
</context>
<context>
    <name>flowtide::Inspector</name>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Framing</source>
        <translation>Ausschnitt</translation>
    </message>
    <message>
        <source>Clip</source>
        <translation>Clip</translation>
    </message>
</context>
<context>
    <name>flowtide::Magnifier</name>
    <message>
        <source>Fit</source>
        <translation>Einpassen</translation>
    </message>
    <message>
        <source>Magnifier: %1</source>
        <translation>Lupe: %1</translation>
    </message>
    <message>
        <source>Size of the picture</source>
        <translation>Größe des Bildes</translation>
    </message>
</context>
<context>
    <name>flowtide::MainWindow</name>
    <message>
        <source>Clips and projects</source>
        <translation>Clips und Projekte</translation>
    </message>
    <message>
        <source>Loftwell Video</source>
        <translation>Loftwell Video</translation>
    </message>
    <message>
        <source>Top bar</source>
        <translation>Kopfleiste</translation>
    </message>
    <message>
        <source>Projects</source>
        <translation>Projekte</translation>
    </message>
    <message>
        <source>Viewer</source>
        <translation>Bildbereich</translation>
    </message>
    <message>
        <source>Transport</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Timeline</source>
        <translation>Zeitachse</translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
    <message>
        <source>Start screen</source>
        <translation>Startansicht</translation>
    </message>
    <message>
        <source>Workspace</source>
        <translation>Arbeitsbereich</translation>
    </message>
    <message>
        <source>%1 – Loftwell Video</source>
        <translation>%1 – Loftwell Video</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Öffnen …</translation>
    </message>
    <message>
        <source>Save project</source>
        <translation>Projekt sichern</translation>
    </message>
    <message>
        <source>Save a copy…</source>
        <translation>Kopie sichern …</translation>
    </message>
    <message>
        <source>Close project</source>
        <translation>Projekt schließen</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exportieren …</translation>
    </message>
    <message>
        <source>Reset curve</source>
        <translation>Kurve zurücksetzen</translation>
    </message>
    <message>
        <source>Reset framing</source>
        <translation>Ausschnitt zurücksetzen</translation>
    </message>
    <message>
        <source>Set trim start to the playhead</source>
        <translation>Anfang an die Abspielposition setzen</translation>
    </message>
    <message>
        <source>Set trim end to the playhead</source>
        <translation>Ende an die Abspielposition setzen</translation>
    </message>
    <message>
        <source>Reset trim</source>
        <translation>Beschnitt zurücksetzen</translation>
    </message>
    <message>
        <source>Full-screen preview</source>
        <translation>Vollbildvorschau</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>What&apos;s New</source>
        <translation>Neuigkeiten</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über Loftwell Video</translation>
    </message>
    <message>
        <source>Open a clip or project</source>
        <translation>Clip oder Projekt öffnen</translation>
    </message>
    <message>
        <source>Save a copy</source>
        <translation>Kopie sichern</translation>
    </message>
    <message>
        <source>%1 retimed</source>
        <translation>%1 neues Tempo</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>Movies</source>
        <translation>Filme</translation>
    </message>
    <message>
        <source>Locate the original clip</source>
        <translation>Den Original-Clip suchen</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stumm</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <translation>Nach Updates suchen …</translation>
    </message>
</context>
<context>
    <name>flowtide::MessageSheet</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>flowtide::PointSection</name>
    <message>
        <source>Point</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>Delete selected points</source>
        <translation>Gewählte Punkte löschen</translation>
    </message>
    <message>
        <source>Delete selected points (Delete)</source>
        <translation>Gewählte Punkte löschen (Entf)</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>The clip ends at %1.</source>
        <translation>Der Clip endet bei %1.</translation>
    </message>
    <message>
        <source>Another point is there. Points stay 0.01 s apart.</source>
        <translation>Dort ist ein anderer Punkt. Punkte bleiben 0,01 s auseinander.</translation>
    </message>
    <message>
        <source>Speeds run from 0.01x to 100x.</source>
        <translation>Das Tempo reicht von 0.01x bis 100x.</translation>
    </message>
    <message>
        <source>Positions run from 0% to 100%.</source>
        <translation>Positionen reichen von 0 % bis 100 %.</translation>
    </message>
    <message>
        <source>%1 selected</source>
        <translation>%1 gewählt</translation>
    </message>
    <message>
        <source>Trim start</source>
        <translation>Anfang</translation>
    </message>
    <message>
        <source>Trim end</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>Outside the trim</source>
        <translation>Außerhalb</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Select one point to edit its time and speed.</source>
        <translation>Wählen Sie einen einzelnen Punkt, um Zeit und Tempo zu ändern.</translation>
    </message>
    <message>
        <source>Select one point to edit its time and position.</source>
        <translation>Wählen Sie einen einzelnen Punkt, um Zeit und Position zu ändern.</translation>
    </message>
    <message>
        <source>Select a point on the curve to edit its time and speed.</source>
        <translation>Wählen Sie einen Punkt der Kurve, um Zeit und Tempo zu ändern.</translation>
    </message>
    <message>
        <source>Select a point on the curve to edit its time and position.</source>
        <translation>Wählen Sie einen Punkt der Kurve, um Zeit und Position zu ändern.</translation>
    </message>
</context>
<context>
    <name>flowtide::PreviewSection</name>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Render while idle</source>
        <translation>In Pausen berechnen</translation>
    </message>
    <message>
        <source>Render up to five output seconds around the playhead, inside marked ranges only.</source>
        <translation>Bis zu fünf Sekunden der Ausgabe um die Abspielposition, nur in markierten Bereichen.</translation>
    </message>
    <message>
        <source>Preview resolution</source>
        <translation>Auflösung der Vorschau</translation>
    </message>
    <message>
        <source>720p</source>
        <translation>720p</translation>
    </message>
    <message>
        <source>Full resolution</source>
        <translation>Volle Auflösung</translation>
    </message>
</context>
<context>
    <name>flowtide::ProjectsSidebar</name>
    <message>
        <source>Projects</source>
        <translation>Projekte</translation>
    </message>
    <message>
        <source>Autosaved projects and recent clips</source>
        <translation>Gesicherte Projekte und letzte Clips</translation>
    </message>
    <message>
        <source>Saved on %1</source>
        <translation>Gesichert auf %1</translation>
    </message>
</context>
<context>
    <name>flowtide::RelinkView</name>
    <message>
        <source>Locate the original clip</source>
        <translation>Den Original-Clip suchen</translation>
    </message>
    <message>
        <source>The clip of this project has moved. Your edits are kept. The file is recognized by its content, so a new name or folder is fine.</source>
        <translation>Der Clip dieses Projekts ist nicht mehr dort. Ihre Bearbeitung ist erhalten. Die Datei wird am Inhalt erkannt, ein neuer Name oder Ordner macht nichts.</translation>
    </message>
    <message>
        <source>Clip</source>
        <translation>Clip</translation>
    </message>
    <message>
        <source>Last folder</source>
        <translation>Letzter Ordner</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Project saved</source>
        <translation>Projekt gesichert</translation>
    </message>
    <message>
        <source>Remove from list</source>
        <translation>Aus der Liste entfernen</translation>
    </message>
    <message>
        <source>Close project</source>
        <translation>Projekt schließen</translation>
    </message>
    <message>
        <source>Locate clip…</source>
        <translation>Clip suchen …</translation>
    </message>
    <message>
        <source>Chosen: %1</source>
        <translation>Gewählt: %1</translation>
    </message>
</context>
<context>
    <name>flowtide::ScrubBar</name>
    <message>
        <source>Position in the output</source>
        <translation>Stelle in der Ausgabe</translation>
    </message>
</context>
<context>
    <name>flowtide::ShortcutSheet</name>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Close (Esc)</source>
        <translation>Schließen (Esc)</translation>
    </message>
    <message>
        <source>Press ? anytime in the editor to show this reference.</source>
        <translation>Mit ? erscheint diese Übersicht jederzeit.</translation>
    </message>
</context>
<context>
    <name>flowtide::SpeedTab</name>
    <message>
        <source>Speed curve</source>
        <translation>Tempokurve</translation>
    </message>
    <message>
        <source>Reset curve</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Smoothing</source>
        <translation>Glättung</translation>
    </message>
    <message>
        <source>Source range</source>
        <translation>Quellbereich</translation>
    </message>
    <message>
        <source>Output duration</source>
        <translation>Dauer der Ausgabe</translation>
    </message>
</context>
<context>
    <name>flowtide::StartScreen</name>
    <message>
        <source>Recent projects</source>
        <translation>Letzte Projekte</translation>
    </message>
    <message>
        <source>Autosaved projects and recent clips</source>
        <translation>Gesicherte Projekte und letzte Clips</translation>
    </message>
    <message>
        <source>Saved on %1</source>
        <translation>Gesichert auf %1</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
</context>
<context>
    <name>flowtide::StateChip</name>
    <message>
        <source>Original frames · Optical Flow off</source>
        <translation>Originalbilder · Optical Flow aus</translation>
    </message>
    <message>
        <source>%1 forward</source>
        <translation>%1 vorwärts</translation>
    </message>
    <message>
        <source>%1 backward</source>
        <translation>%1 rückwärts</translation>
    </message>
    <message>
        <source>Opening %1…</source>
        <translation>%1 wird geöffnet …</translation>
    </message>
    <message>
        <source>Preparing playback…</source>
        <translation>Wiedergabe wird vorbereitet …</translation>
    </message>
</context>
<context>
    <name>flowtide::SubjectPanel</name>
    <message>
        <source>Tracking</source>
        <translation>Verfolgung</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Subject tracking</source>
        <translation>Motivverfolgung</translation>
    </message>
</context>
<context>
    <name>flowtide::SubjectSection</name>
    <message>
        <source>Subject</source>
        <translation>Motiv</translation>
    </message>
    <message>
        <source>Track subject</source>
        <translation>Motiv verfolgen</translation>
    </message>
    <message>
        <source>Tracked</source>
        <translation>Verfolgt</translation>
    </message>
    <message>
        <source>Subject lost</source>
        <translation>Motiv verloren</translation>
    </message>
    <message>
        <source>Tracking runs from the chosen frame in both directions. Editing the framing now discards this track.</source>
        <translation>Die Verfolgung läuft vom gewählten Bild in beide Richtungen. Wer jetzt den Ausschnitt ändert, verwirft sie.</translation>
    </message>
    <message>
        <source>Draw a tight box around the subject (torso for a player). Tracking follows it in both directions.</source>
        <translation>Ziehen Sie einen engen Rahmen um das Motiv (bei Spielern um den Oberkörper). Es wird in beide Richtungen verfolgt.</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
</context>
<context>
    <name>flowtide::TimelineHead</name>
    <message>
        <source>Curve</source>
        <translation>Kurve</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Framing</source>
        <translation>Ausschnitt</translation>
    </message>
    <message>
        <source>Zoom timeline out</source>
        <translation>Zeitachse verkleinern</translation>
    </message>
    <message>
        <source>Zoom timeline out (−)</source>
        <translation>Zeitachse verkleinern (−)</translation>
    </message>
    <message>
        <source>Fit timeline</source>
        <translation>Ganze Zeitachse</translation>
    </message>
    <message>
        <source>Fit timeline (⇧Z)</source>
        <translation>Ganze Zeitachse (⇧Z)</translation>
    </message>
    <message>
        <source>Zoom timeline in</source>
        <translation>Zeitachse vergrößern</translation>
    </message>
    <message>
        <source>Zoom timeline in (+)</source>
        <translation>Zeitachse vergrößern (+)</translation>
    </message>
    <message>
        <source>%1%2 s</source>
        <translation>%1%2 s</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>Ausgabe</translation>
    </message>
</context>
<context>
    <name>flowtide::TimelineOverlay</name>
    <message>
        <source>out</source>
        <translation>neu</translation>
    </message>
</context>
<context>
    <name>flowtide::TimelinePane</name>
    <message>
        <source>Drag empty graph space to scrub. Shift-drag to select points. Pinch or ⌥-scroll to zoom the timeline; scroll sideways to pan.</source>
        <translation>Ziehen bewegt die Abspielposition, Shift-Ziehen wählt Punkte. Zwei Finger oder ⌥-Rad vergrößern die Zeitachse, seitlich rollen verschiebt sie.</translation>
    </message>
</context>
<context>
    <name>flowtide::TopBar</name>
    <message>
        <source>Projects</source>
        <translation>Projekte</translation>
    </message>
    <message>
        <source>Show or hide projects (⌃⌘S)</source>
        <translation>Projekte ein- oder ausblenden (⌃⌘S)</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Open a clip or project (⌘O)</source>
        <translation>Clip oder Projekt öffnen (⌘O)</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Widerrufen</translation>
    </message>
    <message>
        <source>Undo (⌘Z)</source>
        <translation>Widerrufen (⌘Z)</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Redo (⇧⌘Z)</source>
        <translation>Wiederholen (⇧⌘Z)</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Keyboard shortcuts (?)</source>
        <translation>Tastenkürzel (?)</translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
    <message>
        <source>Show or hide inspector (⌥⌘I)</source>
        <translation>Inspektor ein- oder ausblenden (⌥⌘I)</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exportieren …</translation>
    </message>
    <message>
        <source>Render the retimed clip to a new file (⌘E)</source>
        <translation>Den Clip im neuen Tempo in eine Datei schreiben (⌘E)</translation>
    </message>
    <message>
        <source>Loftwell Video</source>
        <translation>Loftwell Video</translation>
    </message>
    <message>
        <source>Verifying…</source>
        <translation>Prüfung …</translation>
    </message>
    <message>
        <source>Exporting %1</source>
        <translation>Export %1</translation>
    </message>
</context>
<context>
    <name>flowtide::TransportBar</name>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>Ausgabe</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Previous curve point (↑)</source>
        <translation>Voriger Punkt (↑)</translation>
    </message>
    <message>
        <source>Previous output frame (←)</source>
        <translation>Voriges Bild der Ausgabe (←)</translation>
    </message>
    <message>
        <source>Play or pause (Space)</source>
        <translation>Abspielen oder anhalten (Leertaste)</translation>
    </message>
    <message>
        <source>Next output frame (→)</source>
        <translation>Nächstes Bild der Ausgabe (→)</translation>
    </message>
    <message>
        <source>Next curve point (↓)</source>
        <translation>Nächster Punkt (↓)</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Loop this range</source>
        <translation>Diesen Bereich wiederholen</translation>
    </message>
    <message>
        <source>Crop</source>
        <translation>Ausschnitt</translation>
    </message>
    <message>
        <source>Toggle the crop (9:16, 1:1, or 4:5)</source>
        <translation>Ausschnitt ein oder aus (9:16, 1:1 oder 4:5)</translation>
    </message>
    <message>
        <source>Compare</source>
        <translation>Vergleichen</translation>
    </message>
    <message>
        <source>Compare original and retimed frames</source>
        <translation>Original und neues Tempo vergleichen</translation>
    </message>
    <message>
        <source>Full-screen preview (⌘F)</source>
        <translation>Vollbildvorschau (⌘F)</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
</context>
<context>
    <name>flowtide::TrimHandle</name>
    <message>
        <source>Trim start</source>
        <translation>Anfang</translation>
    </message>
    <message>
        <source>Trim end</source>
        <translation>Ende</translation>
    </message>
</context>
<context>
    <name>flowtide::VideoSurface</name>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Lock center is on.</source>
        <translation>Die Mitte ist gesperrt.</translation>
    </message>
    <message>
        <source>Drag the crop frame sideways to keyframe its position at the playhead</source>
        <translation>Ziehen Sie den Ausschnitt seitwärts, um seine Position hier festzuhalten</translation>
    </message>
    <message>
        <source>Crop frame %1</source>
        <translation>Ausschnitt %1</translation>
    </message>
    <message>
        <source>Zoom target %1, %2</source>
        <translation>Zoom-Ziel %1, %2</translation>
    </message>
</context>
<context>
    <name>flowtide::WindowMessages</name>
    <message>
        <source>What’s new in Loftwell Video %1</source>
        <translation>Neu in Loftwell Video %1</translation>
    </message>
    <message>
        <source>Loftwell Video %1</source>
        <translation>Loftwell Video %1</translation>
    </message>
    <message>
        <source>Smooth speed curves for one clip.</source>
        <translation>Weiche Geschwindigkeitskurven für einen Clip.</translation>
    </message>
    <message>
        <source>Updates come from where this copy was installed: your system&apos;s software manager, or the source code that it was built from. Loftwell Video itself never connects to the internet.</source>
        <translation>Updates kommen daher, woher diese Kopie stammt: aus der Softwareverwaltung des Systems oder aus dem Quelltext, aus dem sie gebaut wurde. Loftwell Video selbst verbindet sich nie mit dem Internet.</translation>
    </message>
    <message>
        <source>An export is running.</source>
        <translation>Ein Export läuft.</translation>
    </message>
    <message>
        <source>Closing the window cancels it. Nothing that is on the disk already is changed.</source>
        <translation>Schließen bricht ihn ab. Was schon auf der Festplatte liegt, bleibt, wie es ist.</translation>
    </message>
    <message>
        <source>Cancel export and close</source>
        <translation>Export abbrechen und schließen</translation>
    </message>
    <message>
        <source>Keep exporting</source>
        <translation>Weiter exportieren</translation>
    </message>
</context>
<context>
    <name>flowtide::Workspace</name>
    <message>
        <source>Divider</source>
        <translation>Teiler</translation>
    </message>
    <message>
        <source>Drag to resize the video and timeline areas</source>
        <translation>Ziehen teilt den Platz zwischen Bild und Zeitachse</translation>
    </message>
</context>
<context>
    <name>flowtide::ZoomLaneView</name>
    <message>
        <source>Zoom blocks</source>
        <translation>Zoom-Blöcke</translation>
    </message>
    <message>
        <source>Add zoom at playhead</source>
        <translation>Zoom hier anlegen</translation>
    </message>
    <message>
        <source>Add zoom at playhead (Z)</source>
        <translation>Zoom hier anlegen (Z)</translation>
    </message>
    <message>
        <source>No room for 0.25 s here.</source>
        <translation>Hier ist kein Platz für 0,25 s.</translation>
    </message>
    <message>
        <source>No zoom block selected.</source>
        <translation>Kein Zoom-Block gewählt.</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>Drag the target on the video to set the focal point — ⌥-drag to keyframe motion at the playhead.</source>
        <translation>Ziehen Sie das Ziel auf dem Bild an seinen Platz — ⌥-Ziehen hält Bewegung an der Abspielposition fest.</translation>
    </message>
    <message>
        <source>Remove focal keyframes</source>
        <translation>Bewegung des Ziels entfernen</translation>
    </message>
    <message>
        <source>Delete this zoom block</source>
        <translation>Diesen Zoom-Block löschen</translation>
    </message>
    <message>
        <source>Zoom block %1–%2 seconds, %3</source>
        <translation>Zoom-Block %1–%2 Sekunden, %3</translation>
    </message>
</context>
<context>
    <name>flowtide::ZoomSection</name>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Delete this zoom block</source>
        <translation>Diesen Zoom-Block löschen</translation>
    </message>
    <message>
        <source>Delete this zoom block (⌫)</source>
        <translation>Diesen Zoom-Block löschen (⌫)</translation>
    </message>
    <message>
        <source>No zoom block selected.</source>
        <translation>Kein Zoom-Block gewählt.</translation>
    </message>
    <message>
        <source>Add zoom at playhead</source>
        <translation>Zoom hier anlegen</translation>
    </message>
    <message>
        <source>Places run from 0% to 100%.</source>
        <translation>Stellen reichen von 0 % bis 100 %.</translation>
    </message>
    <message>
        <source>Amount</source>
        <translation>Stärke</translation>
    </message>
    <message>
        <source>Ramp</source>
        <translation>Rampe</translation>
    </message>
    <message>
        <source>Ramp length in seconds of playback — clamped automatically when the block is shorter. 0 = hard cut.</source>
        <translation>Länge der Rampe in Sekunden der Wiedergabe — kürzer, wenn der Block kürzer ist. 0 = harter Schnitt.</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>In and out</source>
        <translation>Hin und zurück</translation>
    </message>
    <message>
        <source>In</source>
        <translation>Hin</translation>
    </message>
    <message>
        <source>Out</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Constant</source>
        <translation>Gleichbleibend</translation>
    </message>
    <message>
        <source>Focal X</source>
        <translation>Ziel X</translation>
    </message>
    <message>
        <source>Focal Y</source>
        <translation>Ziel Y</translation>
    </message>
    <message>
        <source>Drag the target on the video to set the focal point — ⌥-drag to keyframe motion at the playhead.</source>
        <translation>Ziehen Sie das Ziel auf dem Bild an seinen Platz — ⌥-Ziehen hält Bewegung an der Abspielposition fest.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>No room for 0.25 s here.</source>
        <translation>Hier ist kein Platz für 0,25 s.</translation>
    </message>
</context>
</TS>
