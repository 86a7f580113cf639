<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>cMainWindow</name>
    <message>
        <location filename="../../app/mainwindow.cpp" line="49"/>
        <source>Main</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../app/mainwindow.cpp" line="50"/>
        <source>Stops</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../app/mainwindow.cpp" line="51"/>
        <source>Events</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../app/mainwindow.cpp" line="95"/>
        <source>Exit?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../app/mainwindow.cpp" line="95"/>
        <source>Your project has unsaved changes. Exit?</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>cProjectManager</name>
    <message>
        <location filename="../../model/evtimport.cpp" line="130"/>
        <location filename="../../model/luaimport.cpp" line="16"/>
        <source>Failed to open file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../model/evtimport.cpp" line="140"/>
        <source>Route should have 1 or 2 branches, but found %1 branches.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../model/evtimport.cpp" line="153"/>
        <source>Stop: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../model/evtimport.cpp" line="154"/>
        <source>Next: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../model/evtimport.cpp" line="155"/>
        <source>. Last</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>cRouteSelector</name>
    <message>
        <location filename="../../ui/routeselector.cpp" line="57"/>
        <source>Routes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="68"/>
        <source>New project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="69"/>
        <source>Open project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="71"/>
        <source>Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="71"/>
        <source>Save project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="74"/>
        <source>Save as...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="74"/>
        <source>Select file and save project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="97"/>
        <location filename="../../ui/routeselector.cpp" line="104"/>
        <source>Add</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="98"/>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="104"/>
        <source>Add new route to project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="107"/>
        <source>Import</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="107"/>
        <source>Import route to project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="109"/>
        <source>Import Evt-file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="110"/>
        <source>Import Lua-file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="147"/>
        <source>Voskantor project files (*.vosk);;All files (*.*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="148"/>
        <source>Open file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="149"/>
        <source>Open File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="162"/>
        <source>Project has some errors, failed to open.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="176"/>
        <location filename="../../ui/routeselector.cpp" line="189"/>
        <source>Failed to save project.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="196"/>
        <source>New route</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="204"/>
        <source>Stop: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="205"/>
        <source>Next: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="206"/>
        <source>. Last</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="230"/>
        <source>Route file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="231"/>
        <source>Evt files (*.evt);;All files (*.*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="231"/>
        <source>Lua files (*.lua);;All files (*.*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="238"/>
        <location filename="../../ui/routeselector.cpp" line="311"/>
        <source>Error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../ui/routeselector.cpp" line="238"/>
        <source>Failed to import route to project:
%1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>logger::cLogWidget</name>
    <message>
        <location filename="../../logger/logwidget.cpp" line="19"/>
        <source>Logs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../../logger/logwidget.cpp" line="30"/>
        <source>Clear log</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
