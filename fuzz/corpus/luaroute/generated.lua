route =
{
  version = 1,

  id = '{5846af0b-4aa8-4dc3-9ec4-4626da140868}',
  name = 'Маршрут 0',
  short_name = '0',

  type = 'bidir',

  play_sound = true,
  display_text = true,

  base_sound =
  {
    current = '/sdmmc/voskdev/current.wav',
    next = '/sdmmc/voskdev/next.wav',
    last = '/sdmmc/voskdev/last.wav',
  },

  base_text =
  {
    current = 'Остановка: ',
    next = 'Следующая: ',
    last = '. Конечная',
  },

  stops =
  {

    direct =
    {

      {
        name  = 'Остановка 0',
        sound = '/sdmmc/voskdev/stop_0.wav',
        other_sounds = { '/sdmmc/voskdev/transfer.wav' },
        zone  = 
        {
          type = 'round',
          center = { lon = 37 * 3600000.0, lat = 55 * 3600000.0 },
          radius = 20,
          course = { value = 0, diff = 30 },
        },
      },

      {
        name  = 'Остановка 1',
        sound = '/sdmmc/voskdev/stop_1.wav',
        zone  = 
        {
          type = 'round',
          center = { lon = 37.000001 * 3600000.0, lat = 55.000007 * 3600000.0 },
          radius = 21,
        },
      },

      {
        name  = 'Остановка 2',
        sound = '/sdmmc/voskdev/stop_2.wav',
        zone  = 
        {
          type = 'round',
          center = { lon = 37.000002 * 3600000.0, lat = 55.000014 * 3600000.0 },
          radius = 22,
        },
      },

    },

    reverse =
    {

      {
        name  = 'Остановка 3',
        sound = '/sdmmc/voskdev/stop_3.wav',
        zone  = 
        {
          type = 'round',
          center = { lon = 37.000003 * 3600000.0, lat = 55.000021 * 3600000.0 },
          radius = 23,
          course = { value = 3, diff = 33 },
        },
      },

      {
        name  = 'Остановка 4',
        sound = '/sdmmc/voskdev/stop_4.wav',
        zone  = 
        {
          type = 'round',
          center = { lon = 37.000004 * 3600000.0, lat = 55.000028 * 3600000.0 },
          radius = 24,
        },
      },

      {
        name  = 'Остановка 5',
        sound = '/sdmmc/voskdev/stop_5.wav',
        other_sounds = { '/sdmmc/voskdev/transfer.wav' },
        zone  = 
        {
          type = 'round',
          center = { lon = 37.000005 * 3600000.0, lat = 55.000035 * 3600000.0 },
          radius = 25,
        },
      },

    },

  },

  events =
  {
  },
}
