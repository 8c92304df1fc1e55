<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>GenErrorsDlg</name>
    <message>
        <source>Gen&lt;i&gt;Cam errors</source>
        <translation>Gen&lt;i&gt;Cam-Fehler</translation>
    </message>
    <message>
        <source>No Errors</source>
        <translation>Keine Fehler</translation>
    </message>
</context>
<context>
    <name>GenParamTreeModel</name>
    <message>
        <source>Min: %1, Max: %2</source>
        <translation>Min.: %1, Max.: %2</translation>
    </message>
    <message>
        <source>Min: %1, Max: %2, Increment: %3</source>
        <translation>Min.: %1, Max.: %2, Schrittweite: %3</translation>
    </message>
    <message>
        <source>&lt;i&gt;Name:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Name:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>&lt;i&gt;Selectors:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Selektoren:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>Integer</source>
        <translation>Ganzzahl</translation>
    </message>
    <message>
        <source>Boolean</source>
        <translation>Boolesch</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Float</source>
        <translation>Gleitkommazahl</translation>
    </message>
    <message>
        <source>String</source>
        <translation>Zeichenkette</translation>
    </message>
    <message>
        <source>Enumeration</source>
        <translation>Aufzählung</translation>
    </message>
    <message>
        <source>&lt;i&gt;Type:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Typ:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>&lt;i&gt;Limits&lt;/i&gt;: Min: %1, Max: %2</source>
        <translation>&lt;i&gt;Grenzen&lt;/i&gt;: Min.: %1, Max.: %2</translation>
    </message>
    <message>
        <source>&lt;i&gt;Increment&lt;/i&gt;: %1</source>
        <translation>&lt;i&gt;Schrittweite&lt;/i&gt;: %1</translation>
    </message>
    <message>
        <source>&lt;i&gt;Valid values&lt;/i&gt;: %1</source>
        <translation>&lt;i&gt;Gültige Werte&lt;/i&gt;: %1</translation>
    </message>
    <message>
        <source>&lt;i&gt;Enumeration entries&lt;/i&gt;:</source>
        <translation>&lt;i&gt;Aufzählungseinträge&lt;/i&gt;:</translation>
    </message>
    <message>
        <source>&lt;i&gt;Description:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Beschreibung:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>&lt;i&gt;Streamable:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Speicherbar:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>True</source>
        <translation>Wahr</translation>
    </message>
    <message>
        <source>False</source>
        <translation>Falsch</translation>
    </message>
    <message>
        <source>&lt;i&gt;Cachable:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Zwischenspeicherbar:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>ERROR</source>
        <translation>FEHLER</translation>
    </message>
    <message>
        <source>&lt;Value not available&gt;</source>
        <translation>&lt;Wert nicht verfügbar&gt;</translation>
    </message>
    <message>
        <source>&lt;Value not readable&gt;</source>
        <translation>&lt;Wert nicht lesbar&gt;</translation>
    </message>
    <message>
        <source>There is nothing to undo.</source>
        <translation>Es gibt nichts rückgängig zu machen.</translation>
    </message>
    <message>
        <source>&lt;i&gt;Not available because of:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Nicht verfügbar wegen:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>&lt;i&gt;Locked by:&lt;/i&gt; %1</source>
        <translation>&lt;i&gt;Gesperrt durch:&lt;/i&gt; %1</translation>
    </message>
    <message>
        <source>(not readable)</source>
        <translation>(nicht lesbar)</translation>
    </message>
    <message>
        <source>%1 (not available)</source>
        <translation>%1 (nicht verfügbar)</translation>
    </message>
    <message>
        <source>%1 (no entry)</source>
        <translation>%1 (kein Eintrag)</translation>
    </message>
</context>
<context>
    <name>GenParamTreeView</name>
    <message>
        <source>Collapse All</source>
        <translation>Alle zuklappen</translation>
    </message>
    <message>
        <source>Expand All</source>
        <translation>Alle aufklappen</translation>
    </message>
    <message>
        <source>Filter by feature name.
Using of wildcard is possible.</source>
        <translation>Nach Featurenamen filtern.
Platzhalter sind möglich.</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Visibility:</source>
        <translation>Sichtbarkeit:</translation>
    </message>
    <message>
        <source>Level of feature visibility</source>
        <translation>Sichtbarkeitsstufe der Features</translation>
    </message>
    <message>
        <source>Basic</source>
        <translation>Einfach</translation>
    </message>
    <message>
        <source>Expert</source>
        <translation>Experte</translation>
    </message>
    <message>
        <source>Guru</source>
        <translation>Guru</translation>
    </message>
    <message>
        <source>Show Error Dialog</source>
        <translation>Fehlerdialog anzeigen</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigAboutDialog</name>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>OrbCameraConfiguration</source>
        <translation>OrbCameraConfiguration</translation>
    </message>
    <message>
        <source>1.4.0 (build 2230) </source>
        <translation>1.4.0 (build 2230) </translation>
    </message>
    <message>
        <source>Device Information</source>
        <translation>Geräteinformationen</translation>
    </message>
    <message>
        <source>Device Vendor Name:</source>
        <translation>Hersteller:</translation>
    </message>
    <message>
        <source>N/A</source>
        <translation>k. A.</translation>
    </message>
    <message>
        <source>Device Model Name:</source>
        <translation>Modell:</translation>
    </message>
    <message>
        <source>Device Family Name:</source>
        <translation>Gerätefamilie:</translation>
    </message>
    <message>
        <source>Device Version:</source>
        <translation>Geräteversion:</translation>
    </message>
    <message>
        <source>Device Firmware Version:</source>
        <translation>Firmware-Version:</translation>
    </message>
    <message>
        <source>Device Manufacturer Info:</source>
        <translation>Herstellerinformationen:</translation>
    </message>
    <message>
        <source>Device Serial Number:</source>
        <translation>Seriennummer:</translation>
    </message>
    <message>
        <source>Device User Defined Name:</source>
        <translation>Benutzerdefinierter Name:</translation>
    </message>
    <message>
        <source>Sensor Type:</source>
        <translation>Sensortyp:</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>RgsID:</source>
        <translation>RGS-ID:</translation>
    </message>
    <message>
        <source>FpgaID:</source>
        <translation>FPGA-ID:</translation>
    </message>
    <message>
        <source>EpcsID:</source>
        <translation>EPCS-ID:</translation>
    </message>
    <message>
        <source>Firmware Image:</source>
        <translation>Firmware-Abbild:</translation>
    </message>
    <message>
        <source>CustomerID:</source>
        <translation>Kunden-ID:</translation>
    </message>
    <message>
        <source>FamilyID:</source>
        <translation>Familien-ID:</translation>
    </message>
    <message>
        <source>Xml Version:</source>
        <translation>XML-Version:</translation>
    </message>
    <message>
        <source>Copyright</source>
        <translation>Copyright</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigColorDialog</name>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>White Balance</source>
        <translation>Weißabgleich</translation>
    </message>
    <message>
        <source>Tracking Speed</source>
        <translation>Nachführgeschwindigkeit</translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation>Statistik</translation>
    </message>
    <message>
        <source>Red coef.:</source>
        <translation>Rot-Koeff.:</translation>
    </message>
    <message>
        <source>4095</source>
        <translation>4095</translation>
    </message>
    <message>
        <source>Green coef.:</source>
        <translation>Grün-Koeff.:</translation>
    </message>
    <message>
        <source>Blue coef.:</source>
        <translation>Blau-Koeff.:</translation>
    </message>
    <message>
        <source>Manual WB Coef.</source>
        <translation>Manuelle WA-Koeff.</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>Unity</source>
        <translation>Eins</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Ratio</source>
        <translation>Verhältnis</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigFrameABDialog</name>
    <message>
        <source>Frame A/B</source>
        <translation>Bild A/B</translation>
    </message>
    <message>
        <source>Frame Mode:</source>
        <translation>Bildmodus:</translation>
    </message>
    <message>
        <source>Shutter</source>
        <translation>Verschluss</translation>
    </message>
    <message>
        <source>Rolling</source>
        <translation>Rolling</translation>
    </message>
    <message>
        <source>Global</source>
        <translation>Global</translation>
    </message>
    <message>
        <source>ADC</source>
        <translation>ADC</translation>
    </message>
    <message>
        <source>10 bit</source>
        <translation>10 Bit</translation>
    </message>
    <message>
        <source>12 bit</source>
        <translation>12 Bit</translation>
    </message>
    <message>
        <source>FrameA</source>
        <translation>Bild A</translation>
    </message>
    <message>
        <source>Exposure Control</source>
        <translation>Belichtungssteuerung</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>Trigger</source>
        <translation>Trigger</translation>
    </message>
    <message>
        <source>Internal</source>
        <translation>Intern</translation>
    </message>
    <message>
        <source>Fixed Frame Period</source>
        <translation>Feste Bildperiode</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Aktivieren</translation>
    </message>
    <message>
        <source>Line Time</source>
        <translation>Zeilenzeit</translation>
    </message>
    <message>
        <source>Frame Size</source>
        <translation>Bildgröße</translation>
    </message>
    <message>
        <source>Area of Interest</source>
        <translation>Bildausschnitt</translation>
    </message>
    <message>
        <source>Full</source>
        <translation>Voll</translation>
    </message>
    <message>
        <source>QFHD</source>
        <translation>QFHD</translation>
    </message>
    <message>
        <source>Custom</source>
        <translation>Benutzerdefiniert</translation>
    </message>
    <message>
        <source>Subsampling</source>
        <translation>Unterabtastung</translation>
    </message>
    <message>
        <source>Average</source>
        <translation>Mittelwert</translation>
    </message>
    <message>
        <source>Averaging:</source>
        <translation>Mittelung:</translation>
    </message>
    <message>
        <source>P:</source>
        <translation>P:</translation>
    </message>
    <message>
        <source>M:</source>
        <translation>M:</translation>
    </message>
    <message>
        <source>Video Amplifier</source>
        <translation>Videoverstärker</translation>
    </message>
    <message>
        <source>1x</source>
        <translation>1x</translation>
    </message>
    <message>
        <source>2x</source>
        <translation>2x</translation>
    </message>
    <message>
        <source>4x</source>
        <translation>4x</translation>
    </message>
    <message>
        <source>8x</source>
        <translation>8x</translation>
    </message>
    <message>
        <source>Wide Dynamic Range</source>
        <translation>Hoher Dynamikbereich</translation>
    </message>
    <message>
        <source>us</source>
        <translation>µs</translation>
    </message>
    <message>
        <source>FrameB</source>
        <translation>Bild B</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigMainWindow</name>
    <message>
        <source>CamConfig</source>
        <translation>CamConfig</translation>
    </message>
    <message>
        <source>Camera Information</source>
        <translation>Kamerainformationen</translation>
    </message>
    <message>
        <source>Frame A</source>
        <translation>Bild A</translation>
    </message>
    <message>
        <source>Frame B</source>
        <translation>Bild B</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>PxL</source>
        <translation>Px</translation>
    </message>
    <message>
        <source>FPS</source>
        <translation>FPS</translation>
    </message>
    <message>
        <source>fps</source>
        <translation>B/s</translation>
    </message>
    <message>
        <source>FTM</source>
        <translation>FTM</translation>
    </message>
    <message>
        <source>us</source>
        <translation>µs</translation>
    </message>
    <message>
        <source>EXP</source>
        <translation>EXP</translation>
    </message>
    <message>
        <source>TMP</source>
        <translation>TMP</translation>
    </message>
    <message>
        <source>C</source>
        <translation>C</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Ansicht</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>Frame A/B</source>
        <translation>Bild A/B</translation>
    </message>
    <message>
        <source>Trigger</source>
        <translation>Trigger</translation>
    </message>
    <message>
        <source>Pulse</source>
        <translation>Puls</translation>
    </message>
    <message>
        <source>Strobe</source>
        <translation>Blitz</translation>
    </message>
    <message>
        <source>Data Out</source>
        <translation>Datenausgabe</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigOutputDialog</name>
    <message>
        <source>Data Output</source>
        <translation>Datenausgabe</translation>
    </message>
    <message>
        <source>Camera Link Output</source>
        <translation>Camera-Link-Ausgang</translation>
    </message>
    <message>
        <source>Taps:</source>
        <translation>Taps:</translation>
    </message>
    <message>
        <source>Depth:</source>
        <translation>Tiefe:</translation>
    </message>
    <message>
        <source>Pixel Type</source>
        <translation>Pixeltyp</translation>
    </message>
    <message>
        <source>Pixel Format:</source>
        <translation>Pixelformat:</translation>
    </message>
    <message>
        <source>LUT Settings</source>
        <translation>LUT-Einstellungen</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Aktivieren</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>Korrekturen</translation>
    </message>
    <message>
        <source>DPC:</source>
        <translation>DPC:</translation>
    </message>
    <message>
        <source>HPC:</source>
        <translation>HPC:</translation>
    </message>
    <message>
        <source>Image Flip</source>
        <translation>Bildspiegelung</translation>
    </message>
    <message>
        <source>H.Mirror</source>
        <translation>H-Spiegelung</translation>
    </message>
    <message>
        <source>V.Mirror</source>
        <translation>V-Spiegelung</translation>
    </message>
    <message>
        <source>Test Mode</source>
        <translation>Testmodus</translation>
    </message>
    <message>
        <source>Test Pattern:</source>
        <translation>Testmuster:</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigPulseDialog</name>
    <message>
        <source>Pulse Control</source>
        <translation>Pulssteuerung</translation>
    </message>
    <message>
        <source>Internal Pulse Generator</source>
        <translation>Interner Pulsgenerator</translation>
    </message>
    <message>
        <source>Granularity:</source>
        <translation>Auflösung:</translation>
    </message>
    <message>
        <source>Period</source>
        <translation>Periode</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Delay</source>
        <translation>Verzögerung</translation>
    </message>
    <message>
        <source>Freq. [Hz]:</source>
        <translation>Freq. [Hz]:</translation>
    </message>
    <message>
        <source>Process</source>
        <translation>Verarbeitung</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Ctrl+Shift+S, Ctrl+Shift+S</source>
        <translation>Ctrl+Shift+S, Ctrl+Shift+S</translation>
    </message>
    <message>
        <source>Number of Pulses</source>
        <translation>Anzahl der Pulse</translation>
    </message>
    <message>
        <source>Continious</source>
        <translation>Fortlaufend</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>Senden</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigStrobeDialog</name>
    <message>
        <source>Strobe Control</source>
        <translation>Blitzsteuerung</translation>
    </message>
    <message>
        <source>Strobe 1</source>
        <translation>Blitz 1</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Modus:</translation>
    </message>
    <message>
        <source>Reference:</source>
        <translation>Referenz:</translation>
    </message>
    <message>
        <source>Strobe 2</source>
        <translation>Blitz 2</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>Ausgang</translation>
    </message>
    <message>
        <source>Out1:</source>
        <translation>Ausg. 1:</translation>
    </message>
    <message>
        <source>Out2:</source>
        <translation>Ausg. 2:</translation>
    </message>
    <message>
        <source>Output Line</source>
        <translation>Ausgangsleitung</translation>
    </message>
    <message>
        <source>Line:</source>
        <translation>Leitung:</translation>
    </message>
    <message>
        <source>Source:</source>
        <translation>Quelle:</translation>
    </message>
    <message>
        <source>Inverted</source>
        <translation>Invertiert</translation>
    </message>
    <message>
        <source>Timer</source>
        <translation>Timer</translation>
    </message>
    <message>
        <source>Timer:</source>
        <translation>Timer:</translation>
    </message>
    <message>
        <source>Started by:</source>
        <translation>Gestartet durch:</translation>
    </message>
    <message>
        <source>Delay:</source>
        <translation>Verzögerung:</translation>
    </message>
    <message>
        <source>Width:</source>
        <translation>Breite:</translation>
    </message>
</context>
<context>
    <name>OrbCamConfigTriggerDialog</name>
    <message>
        <source>Trigger Control</source>
        <translation>Triggersteuerung</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Aktivieren</translation>
    </message>
    <message>
        <source>Trigger Source:</source>
        <translation>Triggerquelle:</translation>
    </message>
    <message>
        <source>Edge:</source>
        <translation>Flanke:</translation>
    </message>
    <message>
        <source>Debounce:</source>
        <translation>Entprellung:</translation>
    </message>
    <message>
        <source>Software
Trigger</source>
        <translation>Software-
Trigger</translation>
    </message>
    <message>
        <source>Trigger:</source>
        <translation>Trigger:</translation>
    </message>
</context>
<context>
    <name>OrbCameraSelectorDialog</name>
    <message>
        <source>Select camera</source>
        <translation>Kamera auswählen</translation>
    </message>
    <message>
        <source>&amp;Interface info</source>
        <translation>&amp;Schnittstelleninformationen</translation>
    </message>
    <message>
        <source>&amp;Device info</source>
        <translation>&amp;Geräteinformationen</translation>
    </message>
    <message>
        <source>Set IP Address</source>
        <translation>IP-Adresse setzen</translation>
    </message>
    <message>
        <source>Polling</source>
        <translation>Abfragen</translation>
    </message>
</context>
<context>
    <name>OrbGui::AddressEditValidator</name>
    <message>
        <source>An IPv4 address is four numbers from 0 to 255 separated by points, for example 192.168.1.10.</source>
        <translation>Eine IPv4-Adresse besteht aus vier Zahlen von 0 bis 255, getrennt durch Punkte, zum Beispiel 192.168.1.10.</translation>
    </message>
</context>
<context>
    <name>OrbGui::DeviceTreeModel</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
</context>
<context>
    <name>OrbGui::GenParamDelegate</name>
    <message>
        <source>Executed</source>
        <translation>Ausgeführt</translation>
    </message>
    <message>
        <source>This is the nearest value the feature takes. Enter writes it; Escape leaves the feature as it was.</source>
        <translation>Das ist der nächste Wert, den das Merkmal annimmt. Eingabe schreibt ihn; Escape lässt das Merkmal, wie es war.</translation>
    </message>
    <message>
        <source>Not written: the feature cannot be written now (the camera may have stopped answering).</source>
        <translation>Nicht geschrieben: das Merkmal kann jetzt nicht geschrieben werden (die Kamera antwortet vielleicht nicht mehr).</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbCamConfig</name>
    <message>
        <source>Copyright %1 Orb Imaging</source>
        <translation>Copyright %1 Orb Imaging</translation>
    </message>
    <message>
        <source>Select a device</source>
        <translation>Gerät auswählen</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Cannot open %1: %2</source>
        <translation>%1 kann nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>Getrennt</translation>
    </message>
    <message>
        <source>Not current: the camera has frame %1 selected</source>
        <translation>Nicht aktuell: an der Kamera ist Frame %1 gewählt</translation>
    </message>
    <message>
        <source>Temperature of: %1</source>
        <translation>Temperatur von: %1</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbCamConfigFrameABDialog</name>
    <message>
        <source>Dual Video
Line Time [pclk]:</source>
        <translation>Dual Video
Zeilenzeit [pclk]:</translation>
    </message>
    <message>
        <source>Exposure Time </source>
        <translation>Belichtungszeit </translation>
    </message>
    <message>
        <source>Line Time [pclk]:</source>
        <translation>Zeilenzeit [pclk]:</translation>
    </message>
    <message>
        <source>OffsetX:</source>
        <translation>Versatz X:</translation>
    </message>
    <message>
        <source>OffsetY:</source>
        <translation>Versatz Y:</translation>
    </message>
    <message>
        <source>Width: </source>
        <translation>Breite: </translation>
    </message>
    <message>
        <source>Height:</source>
        <translation>Höhe:</translation>
    </message>
    <message>
        <source>Digital Gain:</source>
        <translation>Digitale Verstärkung:</translation>
    </message>
    <message>
        <source>Black Level:</source>
        <translation>Schwarzwert:</translation>
    </message>
    <message>
        <source>Lines:</source>
        <translation>Zeilen:</translation>
    </message>
    <message>
        <source>Clocks:</source>
        <translation>Takte:</translation>
    </message>
    <message>
        <source>Frames A:</source>
        <translation>Frames A:</translation>
    </message>
    <message>
        <source>Frames B:</source>
        <translation>Frames B:</translation>
    </message>
    <message>
        <source>The camera cannot take a digital gain of %1 exactly.
Write %2 instead?</source>
        <translation>Die Kamera kann die digitale Verstärkung %1 nicht genau einstellen.
Stattdessen %2 schreiben?</translation>
    </message>
    <message>
        <source>Digital Gain</source>
        <translation>Digitale Verstärkung</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbCamConfigOutputDialog</name>
    <message>
        <source>Dyn.Thres.:</source>
        <translation>Dyn. Schwelle:</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbCamConfigPulseDialog</name>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbCamConfigStrobeDialog</name>
    <message>
        <source>Delay [%1s]:</source>
        <translation>Verzögerung [%1s]:</translation>
    </message>
    <message>
        <source>Width [%1s]:</source>
        <translation>Breite [%1s]:</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbCamConfigTriggerDialog</name>
    <message>
        <source>Debouncer of %1</source>
        <translation>Entprellung von %1</translation>
    </message>
    <message>
        <source>Debouncer of %1: a time entered here selects %1 on the camera</source>
        <translation>Entprellung von %1: eine hier eingegebene Zeit wählt %1 an der Kamera</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbCameraSelectorDialog</name>
    <message>
        <source>USB3 Vision</source>
        <translation>USB3 Vision</translation>
    </message>
    <message>
        <source>GigE Vision</source>
        <translation>GigE Vision</translation>
    </message>
    <message>
        <source>CameraLink</source>
        <translation>CameraLink</translation>
    </message>
    <message>
        <source>CoaXPress</source>
        <translation>CoaXPress</translation>
    </message>
    <message>
        <source>HD-SDI</source>
        <translation>HD-SDI</translation>
    </message>
    <message>
        <source>Custom</source>
        <translation>Benutzerdefiniert</translation>
    </message>
    <message>
        <source>ReadWrite</source>
        <translation>Lesen und schreiben</translation>
    </message>
    <message>
        <source>ReadOnly</source>
        <translation>Nur lesen</translation>
    </message>
    <message>
        <source>NO ACCESS</source>
        <translation>KEIN ZUGRIFF</translation>
    </message>
    <message>
        <source>IP Subnet Mismatch</source>
        <translation>IP-Subnetz passt nicht</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>&amp;Rescan</source>
        <translation>&amp;Neu suchen</translation>
    </message>
    <message>
        <source>Set IP Address</source>
        <translation>IP-Adresse setzen</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>MAC Address</source>
        <translation>MAC-Adresse</translation>
    </message>
    <message>
        <source>IP Address</source>
        <translation>IP-Adresse</translation>
    </message>
    <message>
        <source>Netmask</source>
        <translation>Netzmaske</translation>
    </message>
    <message>
        <source>Display name</source>
        <translation>Anzeigename</translation>
    </message>
    <message>
        <source>Vendor</source>
        <translation>Hersteller</translation>
    </message>
    <message>
        <source>Model</source>
        <translation>Modell</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>Access status</source>
        <translation>Zugriffsstatus</translation>
    </message>
    <message>
        <source>USB Version</source>
        <translation>USB-Version</translation>
    </message>
    <message>
        <source>Gateway</source>
        <translation>Gateway</translation>
    </message>
    <message>
        <source>Can&apos;t set IP address</source>
        <translation>IP-Adresse kann nicht gesetzt werden</translation>
    </message>
    <message>
        <source>IP Configuration Warning</source>
        <translation>Warnung zur IP-Konfiguration</translation>
    </message>
    <message>
        <source>Specified IP Configuraion is not correct, camera may become undiscoverable
Press OK to skip the IP Configuration, or press Ignore to confirm</source>
        <translation>Die angegebene IP-Konfiguration ist nicht korrekt, die Kamera ist danach möglicherweise nicht mehr auffindbar.
OK überspringt die IP-Konfiguration, Ignorieren bestätigt sie.</translation>
    </message>
    <message>
        <source>The camera %1 is no longer there: nothing was written.</source>
        <translation>Die Kamera %1 ist nicht mehr da: nichts wurde geschrieben.</translation>
    </message>
    <message>
        <source>Searching for cameras…</source>
        <translation>Kameras werden gesucht…</translation>
    </message>
</context>
<context>
    <name>OrbGui::OrbGenParamTreeView</name>
    <message>
        <source>No matching features</source>
        <translation>Keine passenden Features</translation>
    </message>
    <message>
        <source>Clear filter</source>
        <translation>Filter leeren</translation>
    </message>
    <message>
        <source>Filter options</source>
        <translation>Filteroptionen</translation>
    </message>
    <message>
        <source>Case Sensitive</source>
        <translation>Groß-/Kleinschreibung beachten</translation>
    </message>
    <message>
        <source>Whole Words Only</source>
        <translation>Nur ganze Wörter</translation>
    </message>
    <message>
        <source>Copy &amp;Name</source>
        <translation>&amp;Namen kopieren</translation>
    </message>
    <message>
        <source>Copy &amp;Value</source>
        <translation>&amp;Wert kopieren</translation>
    </message>
    <message>
        <source>&amp;Copy Name = Value</source>
        <translation>&amp;Kopieren: Name = Wert</translation>
    </message>
    <message>
        <source>Export Tree as &amp;Text...</source>
        <translation>Baum als &amp;Text exportieren...</translation>
    </message>
    <message>
        <source>Export Tree as &amp;JSON...</source>
        <translation>Baum als &amp;JSON exportieren...</translation>
    </message>
    <message>
        <source>Export Feature Tree</source>
        <translation>Feature-Baum exportieren</translation>
    </message>
    <message>
        <source>Cannot write %1: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>&amp;Save Settings...</source>
        <translation>Einstellungen &amp;speichern...</translation>
    </message>
    <message>
        <source>&amp;Load Settings...</source>
        <translation>Einstellungen &amp;laden...</translation>
    </message>
    <message>
        <source>Save Settings</source>
        <translation>Einstellungen speichern</translation>
    </message>
    <message>
        <source>Load Settings</source>
        <translation>Einstellungen laden</translation>
    </message>
    <message>
        <source>%1
Load them into this camera anyway?</source>
        <translation>%1
Trotzdem in diese Kamera laden?</translation>
    </message>
    <message numerus="yes">
        <source>%n feature(s) could not be written.</source>
        <translation>
            <numerusform>%n Feature konnte nicht geschrieben werden.</numerusform>
            <numerusform>%n Features konnten nicht geschrieben werden.</numerusform>
        </translation>
    </message>
    <message>
        <source>There is no camera.</source>
        <translation>Es ist keine Kamera verbunden.</translation>
    </message>
    <message>
        <source>Cannot read %1: %2</source>
        <translation>%1 kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>The settings are for %1 %2, not for this camera.</source>
        <translation>Die Einstellungen gehören zu %1 %2, nicht zu dieser Kamera.</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>JSON files</source>
        <translation>JSON-Dateien</translation>
    </message>
    <message>
        <source>Text files</source>
        <translation>Textdateien</translation>
    </message>
    <message>
        <source>Camera settings</source>
        <translation>Kameraeinstellungen</translation>
    </message>
</context>
<context>
    <name>OrbGui::QtOrbSpinBox</name>
    <message>
        <source>Out of range: %1 to %2. Enter writes nothing; Escape brings the value back.</source>
        <translation>Außerhalb des Bereichs: %1 bis %2. Enter schreibt nichts; Escape stellt den Wert wieder her.</translation>
    </message>
    <message>
        <source>Out of range: %1 to %2 in steps of %3. Enter writes nothing; Escape brings the value back.</source>
        <translation>Außerhalb des Bereichs: %1 bis %2 in Schritten von %3. Enter schreibt nichts; Escape stellt den Wert wieder her.</translation>
    </message>
</context>
<context>
    <name>OrbGui::SetIpDialog</name>
    <message>
        <source>IP Configuration OK</source>
        <translation>IP-Konfiguration in Ordnung</translation>
    </message>
    <message>
        <source>Incorrect IP address!</source>
        <translation>Ungültige IP-Adresse!</translation>
    </message>
    <message>
        <source>Subnet IP mismatch!</source>
        <translation>IP-Adresse liegt nicht im Subnetz!</translation>
    </message>
    <message>
        <source>Subnet mask mismatch!</source>
        <translation>Subnetzmaske passt nicht!</translation>
    </message>
    <message>
        <source>255.255.255.255 is the broadcast address of every network.</source>
        <translation>255.255.255.255 ist die Broadcast-Adresse jedes Netzes.</translation>
    </message>
    <message>
        <source>Addresses starting with 0 mean &quot;this network&quot;, not a host.</source>
        <translation>Adressen, die mit 0 beginnen, bedeuten &quot;dieses Netz&quot;, keinen Rechner.</translation>
    </message>
    <message>
        <source>Addresses starting with 127 are the loopback of each computer.</source>
        <translation>Adressen, die mit 127 beginnen, sind das Loopback jedes Rechners.</translation>
    </message>
    <message>
        <source>%1 is a multicast address.</source>
        <translation>%1 ist eine Multicast-Adresse.</translation>
    </message>
    <message>
        <source>%1 is in the reserved range 240.0.0.0 and above.</source>
        <translation>%1 liegt im reservierten Bereich ab 240.0.0.0.</translation>
    </message>
    <message>
        <source>%1 is the subnet&apos;s network address.</source>
        <translation>%1 ist die Netzadresse des Subnetzes.</translation>
    </message>
    <message>
        <source>%1 is the subnet&apos;s broadcast address.</source>
        <translation>%1 ist die Broadcast-Adresse des Subnetzes.</translation>
    </message>
    <message>
        <source>Enter the camera&apos;s IP address.</source>
        <translation>Geben Sie die IP-Adresse der Kamera ein.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not an IP address: four numbers from 0 to 255 joined by dots.</source>
        <translation>&quot;%1&quot; ist keine IP-Adresse: vier Zahlen von 0 bis 255, durch Punkte verbunden.</translation>
    </message>
    <message>
        <source>Enter the camera&apos;s subnet mask.</source>
        <translation>Geben Sie die Subnetzmaske der Kamera ein.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a subnet mask: ones from the left, then zeros (such as 255.255.255.0).</source>
        <translation>&quot;%1&quot; ist keine Subnetzmaske: Einsen von links, dann Nullen (etwa 255.255.255.0).</translation>
    </message>
    <message>
        <source>%1 is the network card&apos;s own address.</source>
        <translation>%1 ist die eigene Adresse der Netzwerkkarte.</translation>
    </message>
    <message>
        <source>%1 is already used by %2.</source>
        <translation>%1 wird bereits von %2 verwendet.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a gateway address.</source>
        <translation>&quot;%1&quot; ist keine Gateway-Adresse.</translation>
    </message>
    <message>
        <source>The gateway cannot be the camera&apos;s own address.</source>
        <translation>Das Gateway kann nicht die eigene Adresse der Kamera sein.</translation>
    </message>
    <message>
        <source>The gateway %1 is outside the camera&apos;s subnet.</source>
        <translation>Das Gateway %1 liegt außerhalb des Subnetzes der Kamera.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Unknown error</source>
        <translation>Unbekannter Fehler</translation>
    </message>
    <message>
        <source>File not found</source>
        <translation>Datei nicht gefunden</translation>
    </message>
    <message>
        <source>File read error</source>
        <translation>Fehler beim Lesen der Datei</translation>
    </message>
    <message>
        <source>Wrong configuration</source>
        <translation>Falsche Konfiguration</translation>
    </message>
    <message>
        <source>Invalid index</source>
        <translation>Ungültiger Index</translation>
    </message>
    <message>
        <source>No device</source>
        <translation>Kein Gerät</translation>
    </message>
    <message>
        <source>Invalid argument</source>
        <translation>Ungültiges Argument</translation>
    </message>
    <message>
        <source>Invalid state</source>
        <translation>Ungültiger Zustand</translation>
    </message>
    <message>
        <source>Flash erase error</source>
        <translation>Fehler beim Löschen des Flash-Speichers</translation>
    </message>
    <message>
        <source>GenICam: Generic error</source>
        <translation>GenICam: Allgemeiner Fehler</translation>
    </message>
    <message>
        <source>GenICam: Tree error</source>
        <translation>GenICam: Fehler im Featurebaum</translation>
    </message>
    <message>
        <source>GenICam: Access error</source>
        <translation>GenICam: Zugriffsfehler</translation>
    </message>
    <message>
        <source>GenICam: Parameter type is invalid</source>
        <translation>GenICam: Ungültiger Parametertyp</translation>
    </message>
    <message>
        <source>GenICam: Parameter is out of range</source>
        <translation>GenICam: Parameter außerhalb des Wertebereichs</translation>
    </message>
    <message>
        <source>GenICam: Unknown param</source>
        <translation>GenICam: Unbekannter Parameter</translation>
    </message>
    <message>
        <source>GenICam: Invalid argument</source>
        <translation>GenICam: Ungültiges Argument</translation>
    </message>
    <message>
        <source>Unknown code</source>
        <translation>Unbekannter Code</translation>
    </message>
    <message>
        <source>Error while working with &apos;%1&apos; parameter!<byte value="xd"/>
Description: %2</source>
        <translation>Fehler beim Zugriff auf den Parameter &apos;%1&apos;!</translation>
    </message>
</context>
<context>
    <name>SetIpDialog</name>
    <message>
        <source>Set IP Address</source>
        <translation>IP-Adresse setzen</translation>
    </message>
    <message>
        <source>Network Adapter IP Configuration</source>
        <translation>IP-Konfiguration des Netzwerkadapters</translation>
    </message>
    <message>
        <source>MAC Address        </source>
        <translation>MAC-Adresse        </translation>
    </message>
    <message>
        <source>IP Address</source>
        <translation>IP-Adresse</translation>
    </message>
    <message>
        <source>Subnet Mask</source>
        <translation>Subnetzmaske</translation>
    </message>
    <message>
        <source>Camera IP Configuration</source>
        <translation>IP-Konfiguration der Kamera</translation>
    </message>
    <message>
        <source>IP &amp;Address</source>
        <translation>IP-&amp;Adresse</translation>
    </message>
    <message>
        <source>&amp;Subnet Mask</source>
        <translation>&amp;Subnetzmaske</translation>
    </message>
    <message>
        <source>Default &amp;Gateway</source>
        <translation>Standard-&amp;Gateway</translation>
    </message>
    <message>
        <source>TextLabel</source>
        <translation>TextLabel</translation>
    </message>
</context>
</TS>
