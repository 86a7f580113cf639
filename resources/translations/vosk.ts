<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>cMainWindow</name>
    <message>
        <source>Main</source>
        <translation>Основное</translation>
    </message>
    <message>
        <source>Stops</source>
        <translation>Остановки</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>События</translation>
    </message>
    <message>
        <source>Exit?</source>
        <translation>Выйти?</translation>
    </message>
    <message>
        <source>Your project has unsaved changes. Exit?</source>
        <translation>В проекте есть несохранённые изменения. Выйти?</translation>
    </message>
</context>
<context>
    <name>cProjectManager</name>
    <message>
        <source>Failed to open file</source>
        <translation>Не удалось открыть файл</translation>
    </message>
    <message>
        <source>Route should have 1 or 2 branches, but found %1 branches.</source>
        <translation>Маршрут должен иметь 1 или 2 направления, а найдено направлений: %1.</translation>
    </message>
    <message>
        <source>Stop: </source>
        <translation>Остановка: </translation>
    </message>
    <message>
        <source>Next: </source>
        <translation>Следующая: </translation>
    </message>
    <message>
        <source>. Last</source>
        <translation>. Конечная</translation>
    </message>
</context>
<context>
    <name>cRouteSelector</name>
    <message>
        <source>Routes</source>
        <translation>Маршруты</translation>
    </message>
    <message>
        <source>New project</source>
        <translation>Новый проект</translation>
    </message>
    <message>
        <source>Open project</source>
        <translation>Открыть проект</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Save project</source>
        <translation>Сохранить проект</translation>
    </message>
    <message>
        <source>Save as...</source>
        <translation>Сохранить как...</translation>
    </message>
    <message>
        <source>Select file and save project</source>
        <translation>Выбрать файл и сохранить проект</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Добавить</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Add new route to project</source>
        <translation>Добавить в проект новый маршрут</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Импорт</translation>
    </message>
    <message>
        <source>Import route to project</source>
        <translation>Импортировать маршрут в проект</translation>
    </message>
    <message>
        <source>Import Evt-file</source>
        <translation>Импорт Evt-файла</translation>
    </message>
    <message>
        <source>Import Lua-file</source>
        <translation>Импорт Lua-файла</translation>
    </message>
    <message>
        <source>Voskantor project files (*.vosk);;All files (*.*)</source>
        <translation>Проекты Voskantor (*.vosk);;Все файлы (*.*)</translation>
    </message>
    <message>
        <source>Open file</source>
        <translation>Сохранить файл</translation>
    </message>
    <message>
        <source>Open File</source>
        <translation>Открыть файл</translation>
    </message>
    <message>
        <source>Project has some errors, failed to open.</source>
        <translation>В проекте есть ошибки, открыть не удалось.</translation>
    </message>
    <message>
        <source>Failed to save project.</source>
        <translation>Не удалось сохранить проект.</translation>
    </message>
    <message>
        <source>New route</source>
        <translation>Новый маршрут</translation>
    </message>
    <message>
        <source>Stop: </source>
        <translation>Остановка: </translation>
    </message>
    <message>
        <source>Next: </source>
        <translation>Следующая: </translation>
    </message>
    <message>
        <source>. Last</source>
        <translation>. Конечная</translation>
    </message>
    <message>
        <source>Route file</source>
        <translation>Файл маршрута</translation>
    </message>
    <message>
        <source>Evt files (*.evt);;All files (*.*)</source>
        <translation>Файлы Evt (*.evt);;Все файлы (*.*)</translation>
    </message>
    <message>
        <source>Lua files (*.lua);;All files (*.*)</source>
        <translation>Файлы Lua (*.lua);;Все файлы (*.*)</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Failed to import route to project:
%1</source>
        <translation>Не удалось импортировать маршрут в проект:
%1</translation>
    </message>
</context>
<context>
    <name>logger::cLogWidget</name>
    <message>
        <source>Logs</source>
        <translation>Журнал</translation>
    </message>
    <message>
        <source>Clear log</source>
        <translation>Очистить журнал</translation>
    </message>
</context>
</TS>
