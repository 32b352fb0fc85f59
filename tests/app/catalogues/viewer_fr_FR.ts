<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
    <context>
        <name>main</name>
        <message>
            <source>Documentation</source>
            <translation type="unfinished"></translation>
        </message>
        <message>
            <source>Info</source>
            <translation>Informations</translation>
        </message>
    </context>
</TS>
