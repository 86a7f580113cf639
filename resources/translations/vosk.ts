<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>cBranchNamesCommand</name>
    <message>
        <source>Edit branch names</source>
        <translation>Изменение имён направления</translation>
    </message>
</context>
<context>
    <name>cCheckCommand</name>
    <message>
        <source>Looks for what would make the device announce a route wrongly or not at all.</source>
        <translation>Ищет то, из-за чего устройство объявит остановки маршрута неверно или не объявит вовсе.</translation>
    </message>
    <message>
        <source>The project file (.vosk).</source>
        <translation>Файл проекта (.vosk).</translation>
    </message>
    <message>
        <source>The folder the export will write into, to find sounds lying in it.</source>
        <translation>Папка, в которую будет выгружен маршрут: чтобы найти звуки, лежащие в ней самой.</translation>
    </message>
    <message>
        <source>DIR</source>
        <translation>ПАПКА</translation>
    </message>
    <message>
        <source>Only see that sound files exist; do not read them.</source>
        <translation>Только проверить, что звуковые файлы есть, не читая их.</translation>
    </message>
</context>
<context>
    <name>cCli</name>
    <message>
        <source>Unknown command &quot;%1&quot;.</source>
        <translation>Неизвестная команда «%1».</translation>
    </message>
    <message>
        <source>Print the debug lines of reading and converting on stderr.</source>
        <translation>Выводить отладочные строки чтения и преобразования в stderr.</translation>
    </message>
    <message>
        <source>Only the route with this name or number; may be given more than once.</source>
        <translation>Только маршрут с этим названием или номером; можно указать несколько раз.</translation>
    </message>
    <message>
        <source>The route with this name or number; needed once.</source>
        <translation>Маршрут с этим названием или номером; указывается один раз.</translation>
    </message>
    <message>
        <source>NAME</source>
        <translation>НАЗВАНИЕ</translation>
    </message>
    <message>
        <source>Output as text or json; text when not given.</source>
        <translation>Вывод текстом (text) или в JSON (json); по умолчанию текстом.</translation>
    </message>
    <message>
        <source>FORMAT</source>
        <translation>ФОРМАТ</translation>
    </message>
    <message>
        <source>This command.</source>
        <translation>Эта команда.</translation>
    </message>
    <message>
        <source>%1 needs: %2.</source>
        <translation>Команде %1 нужно: %2.</translation>
    </message>
    <message>
        <source>voskantor-cli %1 --help describes its options.</source>
        <translation>voskantor-cli %1 --help описывает её параметры.</translation>
    </message>
    <message>
        <source>The format is text or json, not &quot;%1&quot;.</source>
        <translation>Формат — text или json, а не «%1».</translation>
    </message>
    <message>
        <source>Usage: voskantor-cli COMMAND [options] ARGUMENTS
Checks, describes and exports Voskantor projects and imports routes into them, without a window.

Commands:
</source>
        <translation>Использование: voskantor-cli КОМАНДА [параметры] АРГУМЕНТЫ
Проверяет, описывает и выгружает проекты Voskantor и импортирует в них маршруты, без окна.

Команды:
</translation>
    </message>
    <message>
        <source>
voskantor-cli COMMAND --help describes a command&apos;s options.
Exit codes: 0 done, 1 problems found, the ride misses a stop, the export failed or a route is not in the feed, 2 wrong arguments or an unreadable project or feed.
</source>
        <translation>
voskantor-cli КОМАНДА --help описывает параметры команды.
Коды выхода: 0 — готово, 1 — найдены ошибки, поездка пропускает остановку, выгрузка не удалась или маршрута нет в фиде, 2 — неверные аргументы, проект или фид не читается.
</translation>
    </message>
</context>
<context>
    <name>cCliContext</name>
    <message>
        <source>Cannot read the project %1: %2</source>
        <translation>Не удалось прочитать проект %1: %2</translation>
    </message>
    <message>
        <source>No route is named &quot;%1&quot;. The project&apos;s routes:</source>
        <translation>Маршрута «%1» нет. Маршруты проекта:</translation>
    </message>
</context>
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
    <name>cCsvReader</name>
    <message>
        <source>the file is damaged or cut short.</source>
        <translation>файл повреждён или обрезан.</translation>
    </message>
    <message>
        <source>a quoted field is not closed.</source>
        <translation>поле в кавычках не закрыто.</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 пуст.</translation>
    </message>
    <message>
        <source>%1, line %2: %3</source>
        <translation>%1, строка %2: %3</translation>
    </message>
    <message>
        <source>a record is longer than %1 MB.</source>
        <translation>запись длиннее %1 МБ.</translation>
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
    <message>
        <source>Not as written:</source>
        <translation>Записано не так:</translation>
    </message>
</context>
<context>
    <name>cExportCommand</name>
    <message>
        <source>Writes the routes&apos; scripts and converted sounds for the device, as the window&apos;s export does.</source>
        <translation>Записывает скрипты маршрутов и преобразованные звуки для устройства, как экспорт в окне.</translation>
    </message>
    <message>
        <source>The project file (.vosk).</source>
        <translation>Файл проекта (.vosk).</translation>
    </message>
    <message>
        <source>The folder to write into: scripts go to route, sounds to voskdev.</source>
        <translation>Папка для записи: скрипты попадают в route, звуки в voskdev.</translation>
    </message>
    <message>
        <source>Export even when the check finds errors.</source>
        <translation>Экспортировать, даже если проверка нашла ошибки.</translation>
    </message>
    <message>
        <source>Nothing exported: the check found errors. --force exports all the same.</source>
        <translation>Ничего не экспортировано: проверка нашла ошибки. С --force экспорт выполняется всё равно.</translation>
    </message>
    <message>
        <source>Cannot make the folder %1</source>
        <translation>Не удаётся создать папку %1</translation>
    </message>
    <message>
        <source>Failed: %1</source>
        <translation>Ошибка: %1</translation>
    </message>
    <message>
        <source>Exported %1 routes and %2 sounds into %3.</source>
        <translation>Экспортировано маршрутов: %1, звуков: %2, в папку %3.</translation>
    </message>
    <message>
        <source>Cannot write %1</source>
        <translation>Не удаётся записать %1</translation>
    </message>
    <message>
        <source>Converted %1 of %2: %3</source>
        <translation>Преобразовано %1 из %2: %3</translation>
    </message>
</context>
<context>
    <name>cExportVerifier</name>
    <message>
        <source>%1 cannot be read back.</source>
        <translation>%1 не удаётся прочитать обратно.</translation>
    </message>
    <message>
        <source>%1 does not read back as a route: %2</source>
        <translation>%1 не читается как маршрут: %2</translation>
    </message>
    <message>
        <source>a stop has no id</source>
        <translation>у остановки нет идентификатора</translation>
    </message>
    <message>
        <source>%1 reads back differently: &quot;%2&quot; instead of &quot;%3&quot;.</source>
        <translation>%1 читается иначе: «%2» вместо «%3».</translation>
    </message>
    <message>
        <source>%1 was not written.</source>
        <translation>%1 не записан.</translation>
    </message>
    <message>
        <source>%1 was not written by this export.</source>
        <translation>%1 записан не этим экспортом.</translation>
    </message>
    <message>
        <source>%1 has no WAV header.</source>
        <translation>У %1 нет заголовка WAV.</translation>
    </message>
    <message>
        <source>%1 is not 8000 Hz mono 16-bit PCM (%2 Hz, %3 channels, %4 bits).</source>
        <translation>%1 не в формате PCM 8000 Гц, моно, 16 бит (%2 Гц, каналов: %3, бит: %4).</translation>
    </message>
    <message>
        <source>%1 states %2 bytes of sound, but holds %3.</source>
        <translation>%1 указывает %2 байт звука, но содержит %3.</translation>
    </message>
</context>
<context>
    <name>cFeedArchive</name>
    <message>
        <source>%1 does not exist.</source>
        <translation>%1 не существует.</translation>
    </message>
    <message>
        <source>%1 is not a readable zip archive; it may be damaged or cut short.</source>
        <translation>%1 не читается как zip-архив; возможно, он повреждён или обрезан.</translation>
    </message>
    <message>
        <source>%1 could not be read.</source>
        <translation>Не удалось прочитать %1.</translation>
    </message>
    <message>
        <source>%1 is damaged in the archive.</source>
        <translation>%1 в архиве повреждён.</translation>
    </message>
</context>
<context>
    <name>cGpxReader</name>
    <message>
        <source>Line %1: the file ends before the GPX document is complete</source>
        <translation>Строка %1: файл кончается раньше, чем документ GPX</translation>
    </message>
    <message>
        <source>Line %1: the XML is not well-formed: %2</source>
        <translation>Строка %1: ошибка в XML: %2</translation>
    </message>
    <message>
        <source>Line %1: this is not a GPX file, its first element is &lt;%2&gt;</source>
        <translation>Строка %1: это не файл GPX, его первый элемент — &lt;%2&gt;</translation>
    </message>
    <message>
        <source>Line %1: unknown GPX namespace &quot;%2&quot;; GPX 1.0 and 1.1 can be read</source>
        <translation>Строка %1: неизвестное пространство имён GPX «%2»; читаются GPX 1.0 и 1.1</translation>
    </message>
    <message>
        <source>Track %1</source>
        <translation>Трек %1</translation>
    </message>
    <message>
        <source>Route %1</source>
        <translation>Маршрут %1</translation>
    </message>
    <message>
        <source>The file has no track or route points</source>
        <translation>В файле нет точек трека или маршрута</translation>
    </message>
    <message>
        <source>Line %1: cannot read the time &quot;%2&quot;</source>
        <translation>Строка %1: не удаётся прочитать время «%2»</translation>
    </message>
    <message>
        <source>Line %1: a point without &quot;%2&quot;</source>
        <translation>Строка %1: точка без «%2»</translation>
    </message>
    <message>
        <source>Line %1: %2 &quot;%3&quot; is not a number</source>
        <translation>Строка %1: %2 «%3» — не число</translation>
    </message>
    <message>
        <source>Line %1: %2 %3 is outside -%4 to %4</source>
        <translation>Строка %1: %2 %3 вне пределов от -%4 до %4</translation>
    </message>
</context>
<context>
    <name>cGtfsFeed</name>
    <message>
        <source>the column %1 is missing.</source>
        <translation>нет столбца %1.</translation>
    </message>
    <message>
        <source>Reading the feed was cancelled.</source>
        <translation>Чтение фида отменено.</translation>
    </message>
    <message>
        <source>%1 &quot;%2&quot; is not a valid number.</source>
        <translation>%1 «%2» не является допустимым числом.</translation>
    </message>
    <message>
        <source>%1 &quot;%2&quot; is not a whole number.</source>
        <translation>%1 «%2» не является целым числом.</translation>
    </message>
    <message>
        <source>%1 &quot;%2&quot; is not defined in %3.</source>
        <translation>%1 «%2» не определён в %3.</translation>
    </message>
    <message>
        <source>%1 &quot;%2&quot; is defined twice.</source>
        <translation>%1 «%2» определён дважды.</translation>
    </message>
    <message>
        <source>The feed has no %1.</source>
        <translation>В фиде нет файла %1.</translation>
    </message>
    <message>
        <source>direction_id &quot;%1&quot; is neither 0 nor 1.</source>
        <translation>direction_id «%1» не равен ни 0, ни 1.</translation>
    </message>
    <message>
        <source>stop_id &quot;%1&quot; has no position in %2.</source>
        <translation>У stop_id «%1» нет координат в %2.</translation>
    </message>
</context>
<context>
    <name>cGtfsImportDialog</name>
    <message>
        <source>Import from GTFS</source>
        <translation>Импорт из GTFS</translation>
    </message>
    <message>
        <source>Feed:</source>
        <translation>Фид:</translation>
    </message>
    <message>
        <source>A zip file or an unpacked folder with routes.txt, trips.txt, stops.txt and stop_times.txt</source>
        <translation>Zip-файл или распакованная папка с routes.txt, trips.txt, stops.txt и stop_times.txt</translation>
    </message>
    <message>
        <source>Zip file…</source>
        <translation>Zip-файл…</translation>
    </message>
    <message>
        <source>Folder…</source>
        <translation>Папка…</translation>
    </message>
    <message>
        <source>Filter by number or name</source>
        <translation>Фильтр по номеру или названию</translation>
    </message>
    <message>
        <source>Short name</source>
        <translation>Краткое название</translation>
    </message>
    <message>
        <source>Long name</source>
        <translation>Полное название</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Тип</translation>
    </message>
    <message>
        <source>Trips</source>
        <translation>Рейсы</translation>
    </message>
    <message>
        <source>Show stops</source>
        <translation>Показать остановки</translation>
    </message>
    <message>
        <source>Read the stops of the selected routes from the feed</source>
        <translation>Прочитать из фида остановки выбранных маршрутов</translation>
    </message>
    <message>
        <source>Direct branch</source>
        <translation>Прямое направление</translation>
    </message>
    <message>
        <source>Reverse branch</source>
        <translation>Обратное направление</translation>
    </message>
    <message>
        <source>Set courses along the route, deviation:</source>
        <translation>Задать курсы вдоль маршрута, отклонение:</translation>
    </message>
    <message>
        <source>Each stop gets a course window in the direction of travel: along the path of shapes.txt where the feed has one, else towards the next stop</source>
        <translation>Каждой остановке задаётся курс по направлению движения: вдоль пути из shapes.txt, если он есть в фиде, иначе к следующей остановке</translation>
    </message>
    <message>
        <source> deg</source>
        <translation> °</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Импорт</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Tram</source>
        <translation>Трамвай</translation>
    </message>
    <message>
        <source>Metro</source>
        <translation>Метро</translation>
    </message>
    <message>
        <source>Rail</source>
        <translation>Поезд</translation>
    </message>
    <message>
        <source>Bus</source>
        <translation>Автобус</translation>
    </message>
    <message>
        <source>Ferry</source>
        <translation>Паром</translation>
    </message>
    <message>
        <source>Cable tram</source>
        <translation>Канатный трамвай</translation>
    </message>
    <message>
        <source>Aerial lift</source>
        <translation>Канатная дорога</translation>
    </message>
    <message>
        <source>Funicular</source>
        <translation>Фуникулёр</translation>
    </message>
    <message>
        <source>Trolleybus</source>
        <translation>Троллейбус</translation>
    </message>
    <message>
        <source>Monorail</source>
        <translation>Монорельс</translation>
    </message>
    <message>
        <source>Coach</source>
        <translation>Междугородний автобус</translation>
    </message>
    <message>
        <source>GTFS feed</source>
        <translation>Фид GTFS</translation>
    </message>
    <message>
        <source>GTFS feeds (*.zip);;All files (*.*)</source>
        <translation>Фиды GTFS (*.zip);;Все файлы (*.*)</translation>
    </message>
    <message>
        <source>GTFS feed folder</source>
        <translation>Папка фида GTFS</translation>
    </message>
    <message>
        <source>Reading the routes and trips of the feed…</source>
        <translation>Чтение маршрутов и рейсов фида…</translation>
    </message>
    <message>
        <source>Reading the stops and stop times of the selected routes…</source>
        <translation>Чтение остановок и расписания выбранных маршрутов…</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Failed to read the GTFS feed:
%1</source>
        <translation>Не удалось прочитать фид GTFS:
%1</translation>
    </message>
    <message>
        <source>Selected routes: %1</source>
        <translation>Выбрано маршрутов: %1</translation>
    </message>
    <message>
        <source>Choose a feed: a zip file or a folder.</source>
        <translation>Выберите фид: zip-файл или папку.</translation>
    </message>
    <message>
        <source>Select the routes to import.</source>
        <translation>Выберите маршруты для импорта.</translation>
    </message>
    <message>
        <source>Press Show stops to see its stops.</source>
        <translation>Нажмите «Показать остановки», чтобы увидеть его остановки.</translation>
    </message>
    <message>
        <source>(empty branch)</source>
        <translation>(пустое направление)</translation>
    </message>
    <message>
        <source>Trips: %1 · stops: %2 · %3 – %4</source>
        <translation>Рейсов: %1 · остановок: %2 · %3 – %4</translation>
    </message>
    <message>
        <source>Direction %1 · trips: %2 · stops: %3 · %4 – %5</source>
        <translation>Направление %1 · рейсов: %2 · остановок: %3 · %4 – %5</translation>
    </message>
</context>
<context>
    <name>cGtfsRouteBuilder</name>
    <message>
        <source>The stops of route %1 have not been read from the feed.</source>
        <translation>Остановки маршрута %1 не прочитаны из фида.</translation>
    </message>
</context>
<context>
    <name>cImportGtfsCommand</name>
    <message>
        <source>Adds routes of a GTFS timetable feed to a project, creating the project if it does not exist.</source>
        <translation>Добавляет в проект маршруты из фида расписания GTFS; если проекта нет, создаёт его.</translation>
    </message>
    <message>
        <source>The feed: a zip file or an unpacked folder.</source>
        <translation>Фид: zip-файл или распакованная папка.</translation>
    </message>
    <message>
        <source>The project file (.vosk) the routes are added to.</source>
        <translation>Файл проекта (.vosk), в который добавляются маршруты.</translation>
    </message>
    <message>
        <source>Only the feed&apos;s route with this route_id or short name; may be given more than once. Every route of the feed without it.</source>
        <translation>Только маршрут фида с этим route_id или кратким названием; можно указать несколько раз. Без параметра — все маршруты фида.</translation>
    </message>
    <message>
        <source>ID</source>
        <translation>ID</translation>
    </message>
    <message>
        <source>Give every stop a course along the route, with this deviation in degrees (1 to 360).</source>
        <translation>Задать каждой остановке курс вдоль маршрута с этим отклонением в градусах (от 1 до 360).</translation>
    </message>
    <message>
        <source>N</source>
        <translation>N</translation>
    </message>
    <message>
        <source>Cannot write the project %1.</source>
        <translation>Не удалось записать проект %1.</translation>
    </message>
    <message>
        <source>Added %1 [%2]: %3 direct and %4 reverse stops</source>
        <translation>Добавлен %1 [%2]: остановок в прямом направлении — %3, в обратном — %4</translation>
    </message>
    <message>
        <source>Routes in the project: %1. Saved %2.</source>
        <translation>Маршрутов в проекте: %1. Сохранено в %2.</translation>
    </message>
    <message>
        <source>The course deviation is a whole number of degrees from 1 to 360, not &quot;%1&quot;.</source>
        <translation>Отклонение курса — целое число градусов от 1 до 360, а не «%1».</translation>
    </message>
    <message>
        <source>The feed has no route with the id or short name &quot;%1&quot;.</source>
        <translation>В фиде нет маршрута с id или кратким названием «%1».</translation>
    </message>
    <message>
        <source>Cannot read the GTFS feed %1: %2</source>
        <translation>Не удалось прочитать фид GTFS %1: %2</translation>
    </message>
</context>
<context>
    <name>cInfoCommand</name>
    <message>
        <source>Lists the routes with their stops, the sounds they use and where the stops lie.</source>
        <translation>Перечисляет маршруты с остановками, используемые звуки и область, где лежат остановки.</translation>
    </message>
    <message>
        <source>The project file (.vosk).</source>
        <translation>Файл проекта (.vosk).</translation>
    </message>
    <message>
        <source>Project: %1</source>
        <translation>Проект: %1</translation>
    </message>
    <message>
        <source>Routes: %1</source>
        <translation>Маршрутов: %1</translation>
    </message>
    <message>
        <source>%1 [%2, %3]: %4 direct and %5 reverse stops</source>
        <translation>%1 [%2, %3]: остановок в прямом направлении — %4, в обратном — %5</translation>
    </message>
    <message>
        <source>Sounds: %1 referenced, %2 missing</source>
        <translation>Звуков: используется %1, отсутствует %2</translation>
    </message>
    <message>
        <source>No stops with coordinates.</source>
        <translation>Нет остановок с координатами.</translation>
    </message>
    <message>
        <source>Stops lie within longitude %1 to %2, latitude %3 to %4.</source>
        <translation>Остановки лежат в пределах долготы от %1 до %2, широты от %3 до %4.</translation>
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
    <message>
        <source>Import from GTFS…</source>
        <translation>Импорт из GTFS…</translation>
    </message>
    <message>
        <source>Check project</source>
        <translation>Проверить проект</translation>
    </message>
    <message>
        <source>Look for what would make the device announce wrongly (F7)</source>
        <translation>Найти то, из-за чего устройство объявит остановки неверно (F7)</translation>
    </message>
    <message>
        <source>Check</source>
        <translation>Проверка</translation>
    </message>
    <message>
        <source>&amp;Tools</source>
        <translation>&amp;Сервис</translation>
    </message>
    <message>
        <source>&amp;Route</source>
        <translation>&amp;Маршрут</translation>
    </message>
    <message>
        <source>Replay track…</source>
        <translation>Проиграть трек…</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Правка</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Отменить</translation>
    </message>
    <message>
        <source>Undo %1</source>
        <translation>Отменить: %1</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Повторить</translation>
    </message>
    <message>
        <source>Redo %1</source>
        <translation>Повторить: %1</translation>
    </message>
    <message>
        <source>History</source>
        <translation>История</translation>
    </message>
    <message>
        <source>Project as opened</source>
        <translation>Проект при открытии</translation>
    </message>
    <message>
        <source>Apply suggested fix to &apos;%1&apos;</source>
        <translation>Исправление остановки «%1» по поездке</translation>
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
    <message>
        <source>%1. %2
Longitude %3, latitude %4</source>
        <translation>%1. %2
Долгота %3, широта %4</translation>
    </message>
    <message>
        <source>Other branch</source>
        <translation>Другое направление</translation>
    </message>
    <message>
        <source>Show the route&apos;s other branch too</source>
        <translation>Показать и другое направление маршрута</translation>
    </message>
    <message>
        <source>Whole route</source>
        <translation>Весь маршрут</translation>
    </message>
    <message>
        <source>Show whole route (F)</source>
        <translation>Показать весь маршрут (F)</translation>
    </message>
    <message>
        <source>Offline map (MBTiles)…</source>
        <translation>Офлайн-карта (MBTiles)…</translation>
    </message>
    <message>
        <source>Offline map</source>
        <translation>Офлайн-карта</translation>
    </message>
    <message>
        <source>MBTiles files (*.mbtiles);;All files (*)</source>
        <translation>Файлы MBTiles (*.mbtiles);;Все файлы (*)</translation>
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
    <message>
        <source>Extra tile sources</source>
        <translation>Дополнительные источники тайлов</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Название</translation>
    </message>
    <message>
        <source>URL template</source>
        <translation>Шаблон URL</translation>
    </message>
    <message>
        <source>Sub-domains</source>
        <translation>Поддомены</translation>
    </message>
    <message>
        <source>API key</source>
        <translation>Ключ API</translation>
    </message>
    <message>
        <source>Max zoom</source>
        <translation>Макс. масштаб</translation>
    </message>
    <message>
        <source>Attribution</source>
        <translation>Указание авторства</translation>
    </message>
    <message>
        <source>In the URL {z}, {x} and {y}, or {q} (Bing quadkey), address the tile; {s} takes one of the sub-domains (a,b,c) and {key} the API key.</source>
        <translation>В URL тайл задают {z}, {x} и {y} или {q} (quadkey Bing); вместо {s} подставляется один из поддоменов (a,b,c), вместо {key} — ключ API.</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Добавить</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>its name is used twice</source>
        <translation>его название уже занято</translation>
    </message>
    <message>
        <source>Tile source %1 cannot be used: %2.</source>
        <translation>Источник тайлов %1 нельзя использовать: %2.</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
</context>
<context>
    <name>cNmeaReader</name>
    <message>
        <source>Log part %1</source>
        <translation>Часть журнала %1</translation>
    </message>
    <message>
        <source>The log has no valid RMC or GGA fix. Sentences without a fix: %1; damaged or malformed: %2.</source>
        <translation>В журнале нет ни одного действительного местоположения RMC или GGA. Предложений без местоположения: %1; повреждённых или искажённых: %2.</translation>
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
    <name>cProblemOutput</name>
    <message>
        <source>No problems found.</source>
        <translation>Проблем не найдено.</translation>
    </message>
    <message>
        <source>Errors: %1, warnings: %2.</source>
        <translation>Ошибок: %1, предупреждений: %2.</translation>
    </message>
</context>
<context>
    <name>cProblemText</name>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Предупреждение</translation>
    </message>
    <message>
        <source>direct</source>
        <translation>прямое</translation>
    </message>
    <message>
        <source>reverse</source>
        <translation>обратное</translation>
    </message>
    <message>
        <source>All routes</source>
        <translation>Все маршруты</translation>
    </message>
    <message>
        <source>Route &quot;%1&quot;</source>
        <translation>Маршрут «%1»</translation>
    </message>
    <message>
        <source>stop %1 &quot;%2&quot;</source>
        <translation>остановка %1 «%2»</translation>
    </message>
</context>
<context>
    <name>cProblemsDock</name>
    <message>
        <source>Problems</source>
        <translation>Проблемы</translation>
    </message>
    <message>
        <source>Route</source>
        <translation>Маршрут</translation>
    </message>
    <message>
        <source>Branch</source>
        <translation>Направление</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Остановка</translation>
    </message>
    <message>
        <source>Problem</source>
        <translation>Проблема</translation>
    </message>
    <message>
        <source>No problems found</source>
        <translation>Проблем не найдено</translation>
    </message>
    <message>
        <source>Errors: %1, warnings: %2</source>
        <translation>Ошибок: %1, предупреждений: %2</translation>
    </message>
</context>
<context>
    <name>cProgressTask</name>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Cancelling…</source>
        <translation>Отмена чтения…</translation>
    </message>
</context>
<context>
    <name>cProjectHistory</name>
    <message>
        <source>Import route &apos;%1&apos;</source>
        <translation>Импорт маршрута «%1»</translation>
    </message>
    <message numerus="yes">
        <source>Import %n routes</source>
        <translation>
            <numerusform>Импорт %n маршрута</numerusform>
            <numerusform>Импорт %n маршрутов</numerusform>
            <numerusform>Импорт %n маршрутов</numerusform>
        </translation>
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
    <name>cReplay</name>
    <message>
        <source>announced before stop %1, %2</source>
        <translation>объявлена раньше остановки %1, %2</translation>
    </message>
    <message numerus="yes">
        <source>announced %n times on one pass</source>
        <translation>
            <numerusform>объявлена %n раз за один проезд</numerusform>
            <numerusform>объявлена %n раза за один проезд</numerusform>
            <numerusform>объявлена %n раз за один проезд</numerusform>
        </translation>
    </message>
    <message>
        <source>never inside the zone (closest %1 m, radius %2 m)</source>
        <translation>ни разу не в зоне (ближе всего %1 м, радиус %2 м)</translation>
    </message>
    <message>
        <source>inside the zone, heading %1° outside %2° ± %3°</source>
        <translation>в зоне, но курс %1° вне %2° ± %3°</translation>
    </message>
    <message>
        <source>inside the zone, but the heading is unknown: the vehicle had not yet moved 5 m</source>
        <translation>в зоне, но курс неизвестен: машина ещё не сдвинулась на 5 м</translation>
    </message>
    <message>
        <source>announced</source>
        <translation>объявлена</translation>
    </message>
    <message>
        <source>missed</source>
        <translation>пропущена</translation>
    </message>
    <message>
        <source>out of order</source>
        <translation>не по порядку</translation>
    </message>
    <message>
        <source>repeated</source>
        <translation>повторена</translation>
    </message>
</context>
<context>
    <name>cReplayCommand</name>
    <message>
        <source>Drives a recorded ride through a route and tells which stops the device would announce.</source>
        <translation>Проводит записанную поездку по маршруту и сообщает, какие остановки объявило бы устройство.</translation>
    </message>
    <message>
        <source>The project file (.vosk).</source>
        <translation>Файл проекта (.vosk).</translation>
    </message>
    <message>
        <source>The recorded ride: GPX or an NMEA 0183 log.</source>
        <translation>Записанная поездка: GPX или журнал NMEA 0183.</translation>
    </message>
    <message>
        <source>direct or reverse; the one with more stops announced when not given.</source>
        <translation>direct (прямое) или reverse (обратное); если не указано — то, где объявлено больше остановок.</translation>
    </message>
    <message>
        <source>BRANCH</source>
        <translation>НАПРАВЛЕНИЕ</translation>
    </message>
    <message>
        <source>The track of the file to replay, counted from 1; the first when not given.</source>
        <translation>Какой трек файла проиграть, считая с 1; если не указано — первый.</translation>
    </message>
    <message>
        <source>N</source>
        <translation>N</translation>
    </message>
    <message>
        <source>The branch is direct or reverse, not &quot;%1&quot;.</source>
        <translation>Направление — direct или reverse, а не «%1».</translation>
    </message>
    <message>
        <source>replay needs one route: --route NAME.</source>
        <translation>Команде replay нужен один маршрут: --route НАЗВАНИЕ.</translation>
    </message>
    <message>
        <source>Several routes are named &quot;%1&quot;; give the route&apos;s number instead.</source>
        <translation>Маршрутов с названием «%1» несколько; укажите номер маршрута.</translation>
    </message>
    <message>
        <source>The route &quot;%1&quot; has no stops to replay.</source>
        <translation>В маршруте «%1» нет остановок для проигрывания.</translation>
    </message>
    <message>
        <source>Cannot read the track %1: %2</source>
        <translation>Не удалось прочитать трек %1: %2</translation>
    </message>
    <message>
        <source>%1: no track &quot;%2&quot; (tracks in the file: %3).</source>
        <translation>%1: нет трека «%2» (треков в файле: %3).</translation>
    </message>
    <message>
        <source>Cannot replay the track %1: %2</source>
        <translation>Трек %1 нельзя проиграть: %2</translation>
    </message>
    <message>
        <source>direct branch</source>
        <translation>прямое направление</translation>
    </message>
    <message>
        <source>reverse branch</source>
        <translation>обратное направление</translation>
    </message>
    <message>
        <source>Route &quot;%1&quot;, %2 (detected)</source>
        <translation>Маршрут «%1», %2 (определено)</translation>
    </message>
    <message>
        <source>Route &quot;%1&quot;, %2</source>
        <translation>Маршрут «%1», %2</translation>
    </message>
    <message>
        <source>heading %1°</source>
        <translation>курс %1°</translation>
    </message>
    <message>
        <source>closest %1 m</source>
        <translation>ближе всего %1 м</translation>
    </message>
    <message>
        <source>pass %1, </source>
        <translation>проезд %1, </translation>
    </message>
    <message>
        <source>Announced %1 of %2, missed %3, out of order %4, repeated %5.</source>
        <translation>Объявлено %1 из %2, пропущено %3, не по порядку %4, повторено %5.</translation>
    </message>
</context>
<context>
    <name>cReplayWindow</name>
    <message>
        <source>Replay track</source>
        <translation>Проигрывание трека</translation>
    </message>
    <message>
        <source>Open track…</source>
        <translation>Открыть трек…</translation>
    </message>
    <message>
        <source>Open a recorded ride: GPX or NMEA 0183</source>
        <translation>Открыть записанную поездку: GPX или NMEA 0183</translation>
    </message>
    <message>
        <source>Track:</source>
        <translation>Трек:</translation>
    </message>
    <message>
        <source>Branch:</source>
        <translation>Направление:</translation>
    </message>
    <message>
        <source>Detect</source>
        <translation>Определить</translation>
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
        <source>Move the vehicle along the track</source>
        <translation>Передвинуть машину по треку</translation>
    </message>
    <message>
        <source>Double-click a row to show its stop on the map</source>
        <translation>Двойной щелчок по строке показывает её остановку на карте</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Остановка</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Проезд</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Состояние</translation>
    </message>
    <message>
        <source>Announced at</source>
        <translation>Время объявления</translation>
    </message>
    <message>
        <source>Heading</source>
        <translation>Курс</translation>
    </message>
    <message>
        <source>Closest</source>
        <translation>Ближе всего</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Причина</translation>
    </message>
    <message>
        <source>Suggested fix</source>
        <translation>Предлагаемое исправление</translation>
    </message>
    <message>
        <source>%1°</source>
        <translation>%1°</translation>
    </message>
    <message>
        <source>Open a recorded ride to see which stops the device would announce on it.</source>
        <translation>Откройте записанную поездку, чтобы увидеть, какие остановки объявило бы на ней устройство.</translation>
    </message>
    <message>
        <source>Replay track: %1</source>
        <translation>Проигрывание трека: %1</translation>
    </message>
    <message>
        <source>Open track</source>
        <translation>Открыть трек</translation>
    </message>
    <message>
        <source>Tracks (*.gpx *.nmea *.txt *.log);;All files (*)</source>
        <translation>Треки (*.gpx *.nmea *.txt *.log);;Все файлы (*)</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>The track could not be read:
%1</source>
        <translation>Не удалось прочитать трек:
%1</translation>
    </message>
    <message numerus="yes">
        <source>%1 (%n points)</source>
        <translation>
            <numerusform>%1 (%n точка)</numerusform>
            <numerusform>%1 (%n точки)</numerusform>
            <numerusform>%1 (%n точек)</numerusform>
        </translation>
    </message>
    <message>
        <source>This track cannot be replayed: %1</source>
        <translation>Этот трек нельзя проиграть: %1</translation>
    </message>
    <message>
        <source>The route is no longer in the project.</source>
        <translation>Этого маршрута в проекте больше нет.</translation>
    </message>
    <message>
        <source>point %1</source>
        <translation>точка %1</translation>
    </message>
    <message>
        <source>%1 m</source>
        <translation>%1 м</translation>
    </message>
    <message>
        <source>Radius %1 m</source>
        <translation>Радиус %1 м</translation>
    </message>
    <message>
        <source>Set the zone&apos;s radius to %1 m instead of %2 m</source>
        <translation>Сделать радиус зоны %1 м вместо %2 м</translation>
    </message>
    <message>
        <source>Course %1°</source>
        <translation>Курс %1°</translation>
    </message>
    <message>
        <source>Reverse the course: %1° instead of %2°</source>
        <translation>Развернуть курс: %1° вместо %2°</translation>
    </message>
    <message>
        <source>Direct branch</source>
        <translation>Прямое направление</translation>
    </message>
    <message>
        <source>Reverse branch</source>
        <translation>Обратное направление</translation>
    </message>
    <message>
        <source>%1 (detected)</source>
        <translation>%1 (определено)</translation>
    </message>
    <message>
        <source>%1: no stops to replay.</source>
        <translation>%1: нет остановок для проигрывания.</translation>
    </message>
    <message>
        <source>%1, %2 passes: %3 of %4 stop visits announced, %5 missed, %6 out of order, %7 repeated.</source>
        <translation>%1, проездов: %2; объявлено %3 из %4 посещений остановок, пропущено %5, не по порядку %6, повторено %7.</translation>
    </message>
    <message>
        <source>%1: %2 of %3 stops announced, %4 missed, %5 out of order, %6 repeated.</source>
        <translation>%1: объявлено %2 из %3 остановок, пропущено %4, не по порядку %5, повторено %6.</translation>
    </message>
    <message>
        <source>heading unknown</source>
        <translation>курс неизвестен</translation>
    </message>
    <message>
        <source>heading %1</source>
        <translation>курс %1</translation>
    </message>
    <message>
        <source>point %1 of %2</source>
        <translation>точка %1 из %2</translation>
    </message>
    <message>
        <source>Pass %1: </source>
        <translation>Проезд %1: </translation>
    </message>
</context>
<context>
    <name>cRouteCheck</name>
    <message>
        <source>The stop has no name.</source>
        <translation>У остановки нет названия.</translation>
    </message>
    <message>
        <source>The %1 &quot;%2&quot; has %3, which the passenger display shows as they are.</source>
        <translation>В поле «%1» («%2») есть %3, и табло для пассажиров покажет их как есть.</translation>
    </message>
    <message>
        <source>The direct branch has no stops.</source>
        <translation>В прямом направлении нет остановок.</translation>
    </message>
    <message>
        <source>The reverse branch has no stops, but a bidirectional route needs both.</source>
        <translation>В обратном направлении нет остановок, а двустороннему маршруту нужны оба.</translation>
    </message>
    <message>
        <source>This route and route &quot;%1&quot; would both be written to route/%2: one script would replace the other.</source>
        <translation>Этот маршрут и маршрут «%1» записались бы в один файл route/%2: один сценарий заменил бы другой.</translation>
    </message>
    <message>
        <source>The program %1 is not installed or not on the search path: no sound would be converted.</source>
        <translation>Программа %1 не установлена или её нет в пути поиска: ни один звук не был бы преобразован.</translation>
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
    <name>cRouteFieldsCommand</name>
    <message>
        <source>Rename route &apos;%1&apos;</source>
        <translation>Переименование маршрута «%1»</translation>
    </message>
    <message>
        <source>Edit route &apos;%1&apos;</source>
        <translation>Изменение маршрута «%1»</translation>
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
    <message>
        <source>Import from GTFS…</source>
        <translation>Импорт из GTFS…</translation>
    </message>
    <message>
        <source>... and %1 more.</source>
        <translation>... и ещё %1.</translation>
    </message>
    <message>
        <source>These texts would not read back as they are:

%1

Save anyway?</source>
        <translation>Эти тексты не прочитаются обратно такими, как есть:

%1

Всё равно сохранить?</translation>
    </message>
    <message>
        <source>The check found %1 errors: the device would announce these routes wrongly or not at all.</source>
        <translation>Проверка нашла ошибок: %1. Устройство объявит эти маршруты неверно или не объявит вовсе.</translation>
    </message>
    <message>
        <source>Export anyway</source>
        <translation>Всё равно экспортировать</translation>
    </message>
    <message>
        <source>Show problems</source>
        <translation>Показать проблемы</translation>
    </message>
    <message>
        <source>Replay track…</source>
        <translation>Проиграть трек…</translation>
    </message>
    <message>
        <source>Add route &apos;%1&apos;</source>
        <translation>Добавление маршрута «%1»</translation>
    </message>
    <message>
        <source>Delete route &apos;%1&apos;</source>
        <translation>Удаление маршрута «%1»</translation>
    </message>
    <message>
        <source>Move route &apos;%1&apos;</source>
        <translation>Перемещение маршрута «%1»</translation>
    </message>
    <message numerus="yes">
        <source>Move %n routes</source>
        <translation>
            <numerusform>Перемещение %n маршрута</numerusform>
            <numerusform>Перемещение %n маршрутов</numerusform>
            <numerusform>Перемещение %n маршрутов</numerusform>
        </translation>
    </message>
    <message>
        <source>Opening %1...</source>
        <translation>Открытие %1...</translation>
    </message>
    <message>
        <source>Saving %1...</source>
        <translation>Сохранение %1...</translation>
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
    <name>cSoundChecks</name>
    <message>
        <source>The sound file &quot;%1&quot; (%2) does not exist.</source>
        <translation>Звукового файла «%1» (%2) нет.</translation>
    </message>
    <message>
        <source>The sound file &quot;%1&quot; (%2) cannot be read: %3.</source>
        <translation>Звуковой файл «%1» (%2) не читается: %3.</translation>
    </message>
    <message>
        <source>The sound file &quot;%1&quot; (%2) is not a sound that can be converted: %3.</source>
        <translation>Файл «%1» (%2) — не звук, который можно преобразовать: %3.</translation>
    </message>
    <message>
        <source>The sound file &quot;%1&quot; (%2) lies in the export&apos;s voskdev folder: converting it would overwrite the original.</source>
        <translation>Звуковой файл «%1» (%2) лежит в папке выгрузки voskdev: преобразование перезаписало бы оригинал.</translation>
    </message>
    <message>
        <source>The sound files &quot;%1&quot; and &quot;%2&quot; would both become voskdev/%3 on the device&apos;s card: one would replace the other.</source>
        <translation>Звуковые файлы «%1» и «%2» оба стали бы файлом voskdev/%3 на карте устройства: один заменил бы другой.</translation>
    </message>
</context>
<context>
    <name>cSoundProbe</name>
    <message>
        <source>the file is empty</source>
        <translation>файл пуст</translation>
    </message>
    <message>
        <source>ffmpeg did not finish reading it</source>
        <translation>ffmpeg не смог дочитать его</translation>
    </message>
    <message>
        <source>ffmpeg: %1</source>
        <translation>ffmpeg: %1</translation>
    </message>
    <message>
        <source>no sound found</source>
        <translation>звук не найден</translation>
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
    <name>cStopChecks</name>
    <message>
        <source>The stop&apos;s centre is not a place on the Earth (longitude %1, latitude %2).</source>
        <translation>Центр остановки — не точка на Земле (долгота %1, широта %2).</translation>
    </message>
    <message>
        <source>The stop was never placed on the map: its centre is still the default point in Moscow.</source>
        <translation>Остановку так и не поставили на карту: её центр всё ещё в точке по умолчанию в Москве.</translation>
    </message>
    <message>
        <source>The zone radius is %1 m; it must be from 1 to %2 m.</source>
        <translation>Радиус зоны — %1 м, а должен быть от 1 до %2 м.</translation>
    </message>
    <message>
        <source>The course window is %1° wide; it must be from 1° to 360°.</source>
        <translation>Ширина окна курса — %1°, а должна быть от 1° до 360°.</translation>
    </message>
    <message>
        <source>The stop is only %1 m from the previous stop &quot;%2&quot;: probably the same stop entered twice.</source>
        <translation>Остановка всего в %1 м от предыдущей, «%2»: вероятно, одна и та же остановка введена дважды.</translation>
    </message>
    <message>
        <source>The zone overlaps that of the previous stop &quot;%1&quot; (%2 m apart, radii %3 m and %4 m): the device may announce them out of order.</source>
        <translation>Зона пересекается с зоной предыдущей остановки «%1» (между центрами %2 м, радиусы %3 м и %4 м): устройство может объявить их не по порядку.</translation>
    </message>
    <message>
        <source>The stop is %1 km from the previous stop &quot;%2&quot;, while stops of this branch are usually %3 m apart: check its coordinates.</source>
        <translation>Остановка в %1 км от предыдущей, «%2», а обычно остановки этого направления в %3 м друг от друга: проверьте её координаты.</translation>
    </message>
    <message>
        <source>The stop has the same centre and name as stop %1.</source>
        <translation>У остановки тот же центр и то же название, что у остановки %1.</translation>
    </message>
    <message>
        <source>Buses pass here heading %1°, outside the course window of %2° ± %3°: the window probably belongs to the other direction.</source>
        <translation>Автобусы идут здесь курсом %1°, вне окна курса %2° ± %3°: вероятно, окно относится к другому направлению.</translation>
    </message>
    <message>
        <source>The zone overlaps that of reverse stop %1 &quot;%2&quot; and their course windows do not tell the directions apart: the device may announce the wrong one.</source>
        <translation>Зона пересекается с зоной остановки %1 «%2» обратного направления, а окна курса не различают направления: устройство может объявить не ту остановку.</translation>
    </message>
</context>
<context>
    <name>cStopCommand</name>
    <message>
        <source>Rename stop &apos;%1&apos;</source>
        <translation>Переименование остановки «%1»</translation>
    </message>
    <message>
        <source>Place stop &apos;%1&apos;</source>
        <translation>Размещение остановки «%1»</translation>
    </message>
    <message>
        <source>Edit stop &apos;%1&apos;</source>
        <translation>Изменение остановки «%1»</translation>
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
    <message>
        <source>Not applied yet: the next edit of this stop writes it</source>
        <translation>Ещё не применено: запишется при следующем изменении этой остановки</translation>
    </message>
    <message>
        <source>Make reverse from direct</source>
        <translation>Обратное из прямого</translation>
    </message>
    <message>
        <source>Make direct from reverse</source>
        <translation>Прямое из обратного</translation>
    </message>
    <message>
        <source>Add stop &apos;%1&apos;</source>
        <translation>Добавление остановки «%1»</translation>
    </message>
    <message>
        <source>Delete stop &apos;%1&apos;</source>
        <translation>Удаление остановки «%1»</translation>
    </message>
    <message numerus="yes">
        <source>Delete %n stops</source>
        <translation>
            <numerusform>Удаление %n остановки</numerusform>
            <numerusform>Удаление %n остановок</numerusform>
            <numerusform>Удаление %n остановок</numerusform>
        </translation>
    </message>
    <message>
        <source>Move stop &apos;%1&apos;</source>
        <translation>Перемещение остановки «%1»</translation>
    </message>
    <message numerus="yes">
        <source>Move %n stops</source>
        <translation>
            <numerusform>Перемещение %n остановки</numerusform>
            <numerusform>Перемещение %n остановок</numerusform>
            <numerusform>Перемещение %n остановок</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The reverse branch has %n stop(s). Replace them with the direct branch in reverse order?</source>
        <translation>
            <numerusform>В обратном направлении %n остановка. Заменить её остановками прямого в обратном порядке?</numerusform>
            <numerusform>В обратном направлении %n остановки. Заменить их остановками прямого в обратном порядке?</numerusform>
            <numerusform>В обратном направлении %n остановок. Заменить их остановками прямого в обратном порядке?</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The direct branch has %n stop(s). Replace them with the reverse branch in reverse order?</source>
        <translation>
            <numerusform>В прямом направлении %n остановка. Заменить её остановками обратного в обратном порядке?</numerusform>
            <numerusform>В прямом направлении %n остановки. Заменить их остановками обратного в обратном порядке?</numerusform>
            <numerusform>В прямом направлении %n остановок. Заменить их остановками обратного в обратном порядке?</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>cTextRules</name>
    <message>
        <source>route name</source>
        <translation>название маршрута</translation>
    </message>
    <message>
        <source>route number</source>
        <translation>номер маршрута</translation>
    </message>
    <message>
        <source>route type</source>
        <translation>тип маршрута</translation>
    </message>
    <message>
        <source>sound of the current stop message</source>
        <translation>звук сообщения о текущей остановке</translation>
    </message>
    <message>
        <source>sound of the next stop message</source>
        <translation>звук сообщения о следующей остановке</translation>
    </message>
    <message>
        <source>sound of the last stop message</source>
        <translation>звук сообщения о конечной остановке</translation>
    </message>
    <message>
        <source>text of the current stop message</source>
        <translation>текст сообщения о текущей остановке</translation>
    </message>
    <message>
        <source>text of the next stop message</source>
        <translation>текст сообщения о следующей остановке</translation>
    </message>
    <message>
        <source>text of the last stop message</source>
        <translation>текст сообщения о конечной остановке</translation>
    </message>
    <message>
        <source>alternate first stop name</source>
        <translation>другое название первой остановки</translation>
    </message>
    <message>
        <source>alternate last stop name</source>
        <translation>другое название последней остановки</translation>
    </message>
    <message>
        <source>stop name</source>
        <translation>название остановки</translation>
    </message>
    <message>
        <source>full stop name</source>
        <translation>полное название остановки</translation>
    </message>
    <message>
        <source>stop sound</source>
        <translation>звук остановки</translation>
    </message>
    <message>
        <source>other sound %1</source>
        <translation>дополнительный звук %1</translation>
    </message>
    <message>
        <source>other text</source>
        <translation>дополнительный текст</translation>
    </message>
    <message>
        <source>a single quote</source>
        <translation>одинарная кавычка</translation>
    </message>
    <message>
        <source>a backslash</source>
        <translation>обратная косая черта</translation>
    </message>
    <message>
        <source>a line break</source>
        <translation>перевод строки</translation>
    </message>
    <message>
        <source>a percent sign followed by a digit</source>
        <translation>знак процента с цифрой после него</translation>
    </message>
    <message>
        <source>This text holds %1: the device script and the project file would read it back differently.</source>
        <translation>В тексте есть %1: сценарий устройства и файл проекта прочитали бы его иначе.</translation>
    </message>
    <message>
        <source>spaces at the start or end</source>
        <translation>пробелы в начале или в конце</translation>
    </message>
    <message>
        <source>doubled spaces</source>
        <translation>двойные пробелы</translation>
    </message>
    <message>
        <source>control or invisible characters</source>
        <translation>управляющие или невидимые символы</translation>
    </message>
    <message>
        <source>The %1 &quot;%2&quot; holds %3: the device script and the project file would read it back differently.</source>
        <translation>В поле «%1» («%2») есть %3: сценарий устройства и файл проекта прочитали бы его иначе.</translation>
    </message>
</context>
<context>
    <name>cTileSource</name>
    <message>
        <source>it has no name</source>
        <translation>у него нет названия</translation>
    </message>
    <message>
        <source>its URL does not start with http:// or https://</source>
        <translation>его URL не начинается с http:// или https://</translation>
    </message>
    <message>
        <source>its URL needs {z}, {x} and {y}, or {q}</source>
        <translation>в его URL нужны {z}, {x} и {y} или {q}</translation>
    </message>
    <message>
        <source>its URL has {s} but no sub-domains are given</source>
        <translation>в его URL есть {s}, но поддомены не указаны</translation>
    </message>
    <message>
        <source>its maximum zoom is not a number from 0 to 19</source>
        <translation>его максимальный масштаб — не число от 0 до 19</translation>
    </message>
</context>
<context>
    <name>cTrackReader</name>
    <message>
        <source>Cannot open %1: %2</source>
        <translation>Не удаётся открыть %1: %2</translation>
    </message>
    <message>
        <source>The file is empty</source>
        <translation>Файл пуст</translation>
    </message>
    <message>
        <source>This is neither a GPX file nor an NMEA 0183 log</source>
        <translation>Это не файл GPX и не журнал NMEA 0183</translation>
    </message>
    <message>
        <source>Line %1: this point of &quot;%2&quot; has no time, but others have one</source>
        <translation>Строка %1: у этой точки «%2» нет времени, а у других точек есть</translation>
    </message>
    <message>
        <source>The file is larger than %1 MB, more than any recorded ride</source>
        <translation>Файл больше %1 МБ — больше любой записи поездки</translation>
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
    <name>qmapcontrol::MBTilesReader</name>
    <message>
        <source>not an SQLite database</source>
        <translation>это не база данных SQLite</translation>
    </message>
    <message>
        <source>locked by another program</source>
        <translation>файл заблокирован другой программой</translation>
    </message>
    <message>
        <source>no table of tiles: not an MBTiles file</source>
        <translation>нет таблицы тайлов: это не файл MBTiles</translation>
    </message>
    <message>
        <source>Offline map cannot be read: %1 (%2)</source>
        <translation>Офлайн-карту не удаётся прочитать: %1 (%2)</translation>
    </message>
    <message>
        <source>the file does not exist</source>
        <translation>файл не существует</translation>
    </message>
    <message>
        <source>its tiles are of the format &quot;%1&quot;, which cannot be shown</source>
        <translation>её тайлы в формате «%1», который не отображается</translation>
    </message>
    <message>
        <source>it holds no tiles</source>
        <translation>в ней нет тайлов</translation>
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
    <message>
        <source>Zoom in to see this map</source>
        <translation>Увеличьте масштаб, чтобы увидеть эту карту</translation>
    </message>
    <message>
        <source>No tiles here: this area lies outside the map</source>
        <translation>Здесь нет тайлов: эта область за пределами карты</translation>
    </message>
</context>
<context>
    <name>qmapcontrol::TileLoader</name>
    <message>
        <source>connection refused</source>
        <translation>соединение отклонено</translation>
    </message>
    <message>
        <source>connection closed by the server</source>
        <translation>сервер закрыл соединение</translation>
    </message>
    <message>
        <source>server not found</source>
        <translation>сервер не найден</translation>
    </message>
    <message>
        <source>no answer in time</source>
        <translation>нет ответа вовремя</translation>
    </message>
    <message>
        <source>the proxy refuses the connection</source>
        <translation>прокси-сервер отклоняет соединение</translation>
    </message>
    <message>
        <source>the proxy asks for a user name and password</source>
        <translation>прокси-сервер требует имя пользователя и пароль</translation>
    </message>
    <message>
        <source>secure connection failed</source>
        <translation>не удалось установить защищённое соединение</translation>
    </message>
    <message>
        <source>Map tiles cannot be loaded: %1 (%2)</source>
        <translation>Тайлы карты не загружаются: %1 (%2)</translation>
    </message>
    <message>
        <source>too many requests</source>
        <translation>слишком много запросов</translation>
    </message>
    <message>
        <source>service unavailable</source>
        <translation>сервис недоступен</translation>
    </message>
    <message>
        <source>access refused (HTTP %1)</source>
        <translation>доступ запрещён (HTTP %1)</translation>
    </message>
    <message>
        <source>server error (HTTP %1)</source>
        <translation>ошибка сервера (HTTP %1)</translation>
    </message>
    <message>
        <source>the server sends no pictures</source>
        <translation>сервер присылает не изображения</translation>
    </message>
</context>
</TS>
