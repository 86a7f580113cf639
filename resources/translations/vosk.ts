<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>cConvertProgress</name>
    <message>
        <source>Converting sound files</source>
        <translation>Преобразование звуковых файлов</translation>
    </message>
    <message>
        <source>%1 of %2 files converted</source>
        <translation>Преобразовано файлов: %1 из %2</translation>
    </message>
    <message>
        <source>Converting: %1</source>
        <translation>Преобразуется: %1</translation>
    </message>
</context>
<context>
    <name>cErrorDialog</name>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Failed to convert sound files:</source>
        <translation>Не удалось преобразовать звуковые файлы:</translation>
    </message>
</context>
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
    <message>
        <source>&amp;File</source>
        <translation>&amp;Файл</translation>
    </message>
    <message>
        <source>Recover unsaved work…</source>
        <translation>Восстановить несохранённую работу…</translation>
    </message>
    <message>
        <source>Recover unsaved work</source>
        <translation>Восстановление несохранённой работы</translation>
    </message>
    <message>
        <source>There is no unsaved work to recover.</source>
        <translation>Несохранённой работы для восстановления нет.</translation>
    </message>
</context>
<context>
    <name>cMapViewer</name>
    <message>
        <source>Google Maps (street)</source>
        <translation>Google Maps (схема)</translation>
    </message>
    <message>
        <source>Google Maps (satelite)</source>
        <translation>Google Maps (спутник)</translation>
    </message>
    <message>
        <source>Google Maps (hybrid)</source>
        <translation>Google Maps (гибрид)</translation>
    </message>
    <message>
        <source>OpenStreetMap (OSM)</source>
        <translation>OpenStreetMap (OSM)</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Остановка</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Critical error when creating map. Please try again.</source>
        <translation>Критическая ошибка при создании карты. Попробуйте ещё раз.</translation>
    </message>
</context>
<context>
    <name>cNetworkSettingsDialog</name>
    <message>
        <source>Network settings</source>
        <translation>Настройки сети</translation>
    </message>
    <message>
        <source>No proxy</source>
        <translation>Без прокси</translation>
    </message>
    <message>
        <source>System proxy</source>
        <translation>Системный прокси</translation>
    </message>
    <message>
        <source>Custom proxy</source>
        <translation>Свой прокси</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Сервер</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Порт</translation>
    </message>
    <message>
        <source>Username</source>
        <translation>Пользователь</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Пароль</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
</context>
<context>
    <name>cPlayer</name>
    <message>
        <source>BASS is using device:</source>
        <translation>BASS использует устройство:</translation>
    </message>
    <message>
        <source>Sound is already playing</source>
        <translation>Звук уже воспроизводится</translation>
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
    <name>cRecoveryDialog</name>
    <message>
        <source>Recover unsaved work</source>
        <translation>Восстановление несохранённой работы</translation>
    </message>
    <message>
        <source>These projects have changes that were never saved. Open one to go on with it, then save it to keep it.</source>
        <translation>В этих проектах есть изменения, которые не были сохранены. Откройте проект, чтобы продолжить работу с ним, и сохраните его, чтобы не потерять изменения.</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Время</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Файл</translation>
    </message>
    <message>
        <source>Routes</source>
        <translation>Маршруты</translation>
    </message>
    <message>
        <source>Stops</source>
        <translation>Остановки</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Открыть</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>(never saved)</source>
        <translation>(не сохранялся)</translation>
    </message>
    <message>
        <source>Discard this unsaved work? It cannot be recovered afterwards.</source>
        <translation>Удалить эту несохранённую работу? Восстановить её потом будет нельзя.</translation>
    </message>
</context>
<context>
    <name>cRouteEditor</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Название</translation>
    </message>
    <message>
        <source>Short name</source>
        <translation>Краткое название</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Тип</translation>
    </message>
    <message>
        <source>Play sound</source>
        <translation>Воспроизводить звук</translation>
    </message>
    <message>
        <source>Show text</source>
        <translation>Показывать текст</translation>
    </message>
    <message>
        <source>Base sounds:</source>
        <translation>Основные звуки:</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>Текущая</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Следующая</translation>
    </message>
    <message>
        <source>Last</source>
        <translation>Конечная</translation>
    </message>
    <message>
        <source>Base texts:</source>
        <translation>Основные тексты:</translation>
    </message>
    <message>
        <source>Bidirectional</source>
        <translation>Двунаправленный</translation>
    </message>
    <message>
        <source>Ring</source>
        <translation>Кольцевой</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Линейный</translation>
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
    <message>
        <source>Save selected routes</source>
        <translation>Сохранить выбранные маршруты</translation>
    </message>
    <message>
        <source>Save selected routes as separate files for loading to device</source>
        <translation>Сохранить выбранные маршруты отдельными файлами для загрузки в устройство</translation>
    </message>
    <message>
        <source>Failed to save route, file wasn&apos;t opened.</source>
        <translation>Не удалось сохранить маршрут: файл не открылся.</translation>
    </message>
</context>
<context>
    <name>cSaveDialog</name>
    <message>
        <source>Save route</source>
        <translation>Сохранение маршрута</translation>
    </message>
    <message>
        <source>Route script:</source>
        <translation>Скрипт маршрута:</translation>
    </message>
    <message>
        <source>Output directory:</source>
        <translation>Папка для сохранения:</translation>
    </message>
    <message>
        <source>...</source>
        <translation>...</translation>
    </message>
    <message>
        <source>Open directory</source>
        <translation>Выбор папки</translation>
    </message>
</context>
<context>
    <name>cScriptPage</name>
    <message>
        <source>Filename:</source>
        <translation>Имя файла:</translation>
    </message>
    <message>
        <source>.lua</source>
        <translation>.lua</translation>
    </message>
</context>
<context>
    <name>cSoundSelector</name>
    <message>
        <source>Open sound file</source>
        <translation>Открыть звуковой файл</translation>
    </message>
    <message>
        <source>Sound files (*.wav);;All files (*.*)</source>
        <translation>Звуковые файлы (*.wav);;Все файлы (*.*)</translation>
    </message>
</context>
<context>
    <name>cStopEditor</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
    <message>
        <source>Direct</source>
        <translation>Прямое</translation>
    </message>
    <message>
        <source>Reverse</source>
        <translation>Обратное</translation>
    </message>
    <message>
        <source>Add stop</source>
        <translation>Добавить остановку</translation>
    </message>
    <message>
        <source>Delete stop</source>
        <translation>Удалить остановку</translation>
    </message>
    <message>
        <source>Move stop up</source>
        <translation>Переместить остановку вверх</translation>
    </message>
    <message>
        <source>Move stop down</source>
        <translation>Переместить остановку вниз</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Название:</translation>
    </message>
    <message>
        <source>Full name:</source>
        <translation>Полное название:</translation>
    </message>
    <message>
        <source>If checked this stop is important</source>
        <translation>Отмеченная остановка считается важной</translation>
    </message>
    <message>
        <source>Important stop</source>
        <translation>Важная остановка</translation>
    </message>
    <message>
        <source>Center:</source>
        <translation>Центр:</translation>
    </message>
    <message>
        <source>Longitude</source>
        <translation>Долгота</translation>
    </message>
    <message>
        <source>Latitude</source>
        <translation>Широта</translation>
    </message>
    <message>
        <source>From map</source>
        <translation>С карты</translation>
    </message>
    <message>
        <source>From database</source>
        <translation>Из базы данных</translation>
    </message>
    <message>
        <source>Radius:</source>
        <translation>Радиус:</translation>
    </message>
    <message>
        <source> m</source>
        <translation> м</translation>
    </message>
    <message>
        <source>Cource:</source>
        <translation>Курс:</translation>
    </message>
    <message>
        <source> deg</source>
        <translation> °</translation>
    </message>
    <message>
        <source>Diff:</source>
        <translation>Отклонение:</translation>
    </message>
    <message>
        <source>Stop sound:</source>
        <translation>Звук остановки:</translation>
    </message>
    <message>
        <source>Other sounds:</source>
        <translation>Другие звуки:</translation>
    </message>
    <message>
        <source>Additional text (advertisment):</source>
        <translation>Дополнительный текст (реклама):</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>Карта</translation>
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
        <source>Extended branch settings</source>
        <translation>Дополнительные настройки направления</translation>
    </message>
    <message>
        <source>Alternate first stop name:</source>
        <translation>Другое название первой остановки:</translation>
    </message>
    <message>
        <source>Alternate last stop name:</source>
        <translation>Другое название последней остановки:</translation>
    </message>
    <message>
        <source>New stop</source>
        <translation>Новая остановка</translation>
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
<context>
    <name>qmapcontrol::MapControl</name>
    <message>
        <source>%1 km</source>
        <translation>%1 км</translation>
    </message>
    <message>
        <source>%1 m</source>
        <translation>%1 м</translation>
    </message>
</context>
</TS>
